#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// desktops.json can't be used.
class NameStoreError : public FailureOf<NameStoreError, std::string> {
public:
    enum class Case { unsupportedSchema, notLoaded };
    static constexpr Sentence<Case> sentences[] = {
        {Case::unsupportedSchema, "desktops.json uses schema {}, which this version cannot read."},
        {Case::notLoaded, "desktops.json could not be read: {}. Names are not being saved until it can."},
    };

    static NameStoreError unsupportedSchema(std::int64_t version) {
        return NameStoreError(Case::unsupportedSchema, std::to_string(version));
    }
    static NameStoreError notLoaded(std::string reason) {
        return NameStoreError(Case::notLoaded, std::move(reason));
    }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
