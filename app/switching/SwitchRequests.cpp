#include "app/switching/SwitchRequests.h"

#include "core/async/Task.h"
#include "core/base/Failure.h"
#include "core/switching/SwitchError.h"
#include "core/text/Text.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace lumnara {

SwitchRequests::SwitchRequests(async::Loop& loop, DesktopCatalog& catalog, SpaceSwitcher& switcher,
                               LinkedSwitching& linkedSwitching, SpaceActivator* activator, Notices& notices)
    : loop_(loop),
      catalog_(catalog),
      switcher_(switcher),
      linkedSwitching_(linkedSwitching),
      activator_(activator),
      notices_(notices) {}

void SwitchRequests::switchTo(const Desktop& desktop) {
    std::vector<Desktop> members = catalog_.linkedMembers(desktop.key);
    std::vector<DisplayID> displays{desktop.display};
    for (const Desktop& member : members) displays.push_back(member.display);
    start(std::move(displays), show(desktop, std::move(members)));
}

void SwitchRequests::switchBack(std::optional<DisplayID> display) {
    const std::optional<DisplayID> meant = display ? display : catalog_.provider().cursorDisplay();
    start(meant ? std::vector{*meant} : std::vector<DisplayID>(), tellFailure(goBack(std::move(display))));
}

async::Task<SwitchResult> SwitchRequests::switchToDesktop(std::string key) {
    std::vector<Desktop> members = catalog_.linkedMembers(key);
    return go(std::move(key), std::move(members));
}

/// What moved one of the displays before is given up: found not to have come where it wanted, it would go
/// there once more.
void SwitchRequests::start(std::vector<DisplayID> displays, async::Task<> task) {
    const auto isMeant = [&](const DisplayID& moved) {
        return std::ranges::any_of(displays, [&](const DisplayID& display) {
            return text::equalsIgnoringCase(display.uuid, moved.uuid);
        });
    };
    std::erase_if(runs_, [&](const Run& earlier) {
        return displays.empty() || earlier.displays.empty() || std::ranges::any_of(earlier.displays, isMeant);
    });
    runs_.push_back({std::move(displays), async::spawn(loop_, std::move(task))});
}

async::Task<SwitchResult> SwitchRequests::go(std::string key, std::vector<Desktop> members) {
    const auto held = holdWord();
    if (members.size() > 1) co_return co_await linkedSwitching_.run(std::move(members));
    co_return co_await switcher_.switchToDesktop(members.empty() ? key : members.front().spaceKey);
}

async::Task<SwitchResult> SwitchRequests::goBack(std::optional<DisplayID> display) {
    const auto held = holdWord();
    co_return co_await switcher_.switchBack(std::move(display));
}

async::Task<> SwitchRequests::show(Desktop desktop, std::vector<Desktop> members) {
    if (members.size() > 1) {
        try {
            co_await go(desktop.key, std::move(members));
        } catch (const std::exception&) {
            // A group tells of its failures itself.
        }
        co_return;
    }
    // Not where a group that is still under way would have the keyboard.
    const auto focus = activator_ ? activator_->keepFocusOn(desktop.display) : nullptr;
    co_await tellFailure(go(desktop.key, std::move(members)));
}

async::Task<> SwitchRequests::tellFailure(async::Task<SwitchResult> switching) {
    const auto context = co_await async::currentContext();
    try {
        co_await std::move(switching);
    } catch (const std::exception& failure) {
        // What became of a switch that another took over from is no longer of interest.
        const auto* refusal = dynamic_cast<const SwitchError*>(&failure);
        const bool isThere = refusal && refusal->which() == SwitchError::Case::alreadyThere;
        if (!isThere && !context.stop.stop_requested()) notices_.show(sentenceOf(std::current_exception()));
    }
}

} // namespace lumnara
