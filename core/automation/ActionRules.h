#pragma once

#include "core/automation/Automation.h"

#include <string_view>
#include <vector>

namespace lumnara {

/// What an action needs to make sense.
class ActionRules {
public:
    static constexpr int maxPomodoroMinutes = 24 * 60;
    static constexpr int maxBreakMinutes = 24 * 60;

    /// A kind of action, as a menu of new ones lists it.
    struct Kind {
        std::string_view title; ///< "Open App"
        AutomationAction blank; ///< what a form for it begins with
    };
    /// The nine, in the order of AutomationAction's cases.
    static const std::vector<Kind>& kinds();

    /// Whether a text is an absolute URL: a scheme, ":" and something behind it, without blanks and control
    /// characters (RFC 3986, 3; letters beyond ASCII are let through).
    static bool isURL(std::string_view text);

    /// The action with blanks around its texts taken off, an empty optional name left out. Throws
    /// AutomationEditError. `longestWait` is in seconds: the runner cuts a longer wait off.
    static AutomationAction checked(AutomationAction action, double longestWait);
};

} // namespace lumnara
