#pragma once

#include "app/overlay/Notices.h"
#include "core/automation/AutomationRunner.h"
#include "core/automation/AutomationStore.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// What the surfaces call the triggers.
struct TriggerChoice {
    AutomationTrigger trigger;
    std::string_view title;
};
inline constexpr std::array<TriggerChoice, 3> triggerChoices = {{{AutomationTrigger::onEnter, "On entering"},
                                                                 {AutomationTrigger::onExit, "On leaving"},
                                                                 {AutomationTrigger::onClick, "On click"}}};

/// The icons offered for an automation.
struct IconChoice {
    std::string_view symbol;
    std::string_view title;
};
inline constexpr std::array<IconChoice, 16> automationIcons = {{{"bolt.fill", "Bolt"},
                                                                {"moon.fill", "Moon"},
                                                                {"video.fill", "Video"},
                                                                {"cup.and.saucer.fill", "Cup"},
                                                                {"timer", "Timer"},
                                                                {"star", "Star"},
                                                                {"house", "House"},
                                                                {"envelope", "Envelope"},
                                                                {"bubble.left", "Bubble"},
                                                                {"calendar", "Calendar"},
                                                                {"book", "Book"},
                                                                {"music.note", "Music"},
                                                                {"globe", "Globe"},
                                                                {"terminal", "Terminal"},
                                                                {"hammer", "Hammer"},
                                                                {"paintbrush", "Brush"}}};

/// The symbol of an action's kind.
std::string_view symbolOf(const AutomationAction& action);
/// What an action's label leaves out, on one line: the whole path, a script's first line. May be empty.
std::string detailOf(const AutomationAction& action);

/// What is told of a run that has ended.
struct RunResult {
    std::string headline;
    std::vector<std::string> failures; ///< as in AutomationRunReport

    bool operator==(const RunResult&) const = default;
};
RunResult resultOf(const AutomationRunReport& report);
RunResult cancelledResult();
/// The first failure of a run that nobody is waiting for; nothing of one without.
std::optional<Notice> failureNotice(const AutomationRunReport& report);

/// What is wrong with the file of automations.
struct AutomationsNotice {
    enum class Remedy { none, load, save };

    std::string text;             ///< a sentence a line
    Remedy remedy = Remedy::none; ///< what may be tried again
    bool canEdit = true;          ///< a change could be kept

    bool operator==(const AutomationsNotice&) const = default;
};
std::optional<AutomationsNotice> noticeOf(const AutomationStore& store);

} // namespace lumnara
