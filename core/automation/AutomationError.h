#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// An action didn't do what it was to do.
class AutomationError : public Failure {
public:
    enum class Case { timeout, failed };

    /// `action` is an action's label, or a short name such as "Shortcut".
    static AutomationError timeout(std::string action);
    static AutomationError failed(std::string action, std::string reason);

    Case which() const { return which_; }
    const std::string& action() const { return action_; }
    /// Of failed.
    const std::string& reason() const { return reason_; }
    bool operator==(const AutomationError& other) const {
        return which_ == other.which_ && action_ == other.action_ && reason_ == other.reason_;
    }

private:
    AutomationError(Case which, std::string sentence, std::string action, std::string reason);

    Case which_;
    std::string action_;
    std::string reason_;
};

} // namespace lumnara
