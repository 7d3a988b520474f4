#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// automations.json can't be used.
class AutomationStoreError : public FailureOf<AutomationStoreError, std::string> {
public:
    enum class Case { notLoaded, unsupportedSchema };
    static constexpr Sentence<Case> sentences[] = {
        {Case::notLoaded, "automations.json could not be read ({}); changes are not saved until it can be."},
        {Case::unsupportedSchema, "automations.json uses schema {}, which this version cannot read."},
    };

    static AutomationStoreError notLoaded(std::string reason) {
        return AutomationStoreError(Case::notLoaded, std::move(reason));
    }
    static AutomationStoreError unsupportedSchema(std::uint64_t version) {
        return AutomationStoreError(Case::unsupportedSchema, std::to_string(version));
    }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
