#include "core/automation/AutomationStoreError.h"

#include <utility>

namespace lumnara {

AutomationStoreError::AutomationStoreError(Case which, std::string sentence)
    : Failure(std::move(sentence)),
      which_(which) {}

AutomationStoreError AutomationStoreError::notLoaded(std::string reason) {
    return {Case::notLoaded,
            "automations.json could not be read (" + reason + "); changes are not saved until it can be."};
}

AutomationStoreError AutomationStoreError::unsupportedSchema(std::uint64_t version) {
    return {Case::unsupportedSchema,
            "automations.json uses schema " + std::to_string(version) + ", which this version cannot read."};
}

} // namespace lumnara
