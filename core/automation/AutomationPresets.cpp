#include "core/automation/AutomationPresets.h"

#include "core/base/Uuid.h"

namespace lumnara {

std::vector<Automation> AutomationPresets::all(const std::string& spaceKey) {
    return {
        {.id = newUuid(),
         .spaceKey = spaceKey,
         .name = "Focus",
         .icon = "moon.fill",
         .trigger = AutomationTrigger::onEnter,
         .actions = {RunShortcutAction{"Set Focus"}, SessionAction{SessionOp::start, "Focus"}}},
        {.id = newUuid(),
         .spaceKey = spaceKey,
         .name = "Meeting",
         .icon = "video.fill",
         .trigger = AutomationTrigger::onClick,
         .actions = {OpenAppAction{"us.zoom.xos", "Zoom"}, OpenAppAction{"com.apple.Notes", "Notes"}}},
        {.id = newUuid(),
         .spaceKey = spaceKey,
         .name = "Break",
         .icon = "cup.and.saucer.fill",
         .trigger = AutomationTrigger::onClick,
         .actions = {PomodoroAction{25, 5}}},
    };
}

} // namespace lumnara
