#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// automations.json can't be used.
class AutomationStoreError : public Failure {
public:
    enum class Case { notLoaded, unsupportedSchema };

    static AutomationStoreError notLoaded(std::string reason);
    static AutomationStoreError unsupportedSchema(std::uint64_t version);

    Case which() const { return which_; }
    bool operator==(const AutomationStoreError& other) const {
        return which_ == other.which_ && sentence() == other.sentence();
    }

private:
    AutomationStoreError(Case which, std::string sentence);

    Case which_;
};

} // namespace lumnara
