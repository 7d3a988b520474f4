#include "core/automation/AutomationError.h"

#include <utility>

namespace lumnara {

AutomationError::AutomationError(Case which, std::string sentence, std::string action, std::string reason)
    : Failure(std::move(sentence)),
      which_(which),
      action_(std::move(action)),
      reason_(std::move(reason)) {}

AutomationError AutomationError::timeout(std::string action) {
    std::string sentence = action + " took too long.";
    return {Case::timeout, std::move(sentence), std::move(action), {}};
}

AutomationError AutomationError::failed(std::string action, std::string reason) {
    std::string sentence = action + " failed: " + reason;
    return {Case::failed, std::move(sentence), std::move(action), std::move(reason)};
}

} // namespace lumnara
