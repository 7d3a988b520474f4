#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// An action didn't do what it was to do.
class AutomationError : public FailureOf<AutomationError, std::string, std::string> {
public:
    enum class Case { timeout, failed };
    static constexpr Sentence<Case> sentences[] = {
        {Case::timeout, "{0} took too long."},
        {Case::failed, "{0} failed: {1}"},
    };

    /// `action` is an action's label, or a short name such as "Shortcut".
    static AutomationError timeout(std::string action) {
        return AutomationError(Case::timeout, std::move(action), {});
    }
    static AutomationError failed(std::string action, std::string reason) {
        return AutomationError(Case::failed, std::move(action), std::move(reason));
    }

    /// Of failed.
    const std::string& reason() const { return payload<1>(); }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
