#pragma once

#include "core/automation/Automation.h"

#include <string>
#include <vector>

namespace lumnara {

class AutomationPresets {
public:
    /// "Focus", "Meeting" and "Break" for one desktop, enabled, each with a fresh id.
    static std::vector<Automation> all(const std::string& spaceKey);
};

} // namespace lumnara
