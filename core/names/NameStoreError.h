#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// desktops.json can't be used.
class NameStoreError : public Failure {
public:
    enum class Case { unsupportedSchema, notLoaded };

    static NameStoreError unsupportedSchema(std::int64_t version);
    static NameStoreError notLoaded(std::string reason);

    Case which() const { return which_; }
    bool operator==(const NameStoreError& other) const {
        return which_ == other.which_ && sentence() == other.sentence();
    }

private:
    NameStoreError(Case which, std::string sentence);

    Case which_;
};

} // namespace lumnara
