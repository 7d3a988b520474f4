#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/FrameArea.h"
#include "core/platform/mac/missioncontrol/MissionControlTiming.h"
#include "core/platform/mac/missioncontrol/SpaceReorderError.h"

#include <algorithm>

namespace lumnara {

namespace {

using namespace MissionControlTiming;

/// A bar that isn't expanded has labels of at most this height.
constexpr double collapsedHeight = 26;

/// A tree that doesn't tell its displays apart may give the thumbnails of another one.
bool standsOn(const SpacesBarButtons& buttons, const Rect& displayFrame) {
    if (buttons.empty()) return true;
    const double middle = (buttons.front().middle().x + buttons.back().middle().x) / 2;
    return middle >= displayFrame.x && middle <= displayFrame.x + displayFrame.width;
}

constexpr double hoverFrom = 200;
constexpr double firstTopOffset = 20;
constexpr double topOffsetStep = 8;
/// The small last move is what makes the bar expand.
constexpr Point hoverNudge{4, 2};

} // namespace

async::Task<> MissionControlSession::open(Rect displayFrame, int expectedCount) {
    if (onProgress) onProgress("Opening Mission Control");
    driver_.open();
    co_await waitUntilOpen();
    for (int round = 0; round < hoverRounds; ++round) {
        co_await hover(displayFrame, firstTopOffset + topOffsetStep * round);
        if (expandedBar(displayFrame, expectedCount)) co_return;
        if (!driver_.isOpen()) throw SpaceReorderError(SpaceReorderError::Case::missionControlDidNotOpen);
    }
    throw SpaceReorderError(SpaceReorderError::Case::spacesBarNotFound);
}

async::Task<> MissionControlSession::waitUntilOpen() {
    for (double waited = 0; !driver_.isOpen(); waited += openPollInterval) {
        if (waited >= openTimeout) throw SpaceReorderError(SpaceReorderError::Case::missionControlDidNotOpen);
        co_await driver_.pause(openPollInterval);
    }
    co_await driver_.pause(openSettle);
}

async::Task<> MissionControlSession::hover(Rect displayFrame, double topOffset) {
    const double middle = displayFrame.x + displayFrame.width / 2;
    const double top = displayFrame.y + topOffset;
    driver_.movePointer({middle, displayFrame.y + hoverFrom}); // from below, as a person comes
    co_await driver_.pause(hoverStepPause);
    driver_.movePointer({middle, top});
    co_await driver_.pause(hoverApproachPause);
    driver_.movePointer({middle + hoverNudge.x, top + hoverNudge.y});
    co_await driver_.pause(hoverSettlePause);
}

async::Task<> MissionControlSession::close() {
    driver_.pressEscape();
    co_await awaitClosing();
    co_await driver_.pause(afterClose);
}

async::Task<> MissionControlSession::awaitClosing() {
    if (co_await hasClosed()) co_return;
    driver_.pressEscape();
    co_await hasClosed();
}

async::Task<bool> MissionControlSession::hasClosed() {
    for (double waited = 0; driver_.isOpen(); waited += openPollInterval) {
        if (waited >= closeTimeout) co_return false;
        co_await driver_.pause(openPollInterval);
    }
    co_return true;
}

bool MissionControlSession::isExpanded(const SpacesBarButtons& buttons, const Rect& displayFrame) {
    if (buttons.empty()) return false;
    const Rect& first = buttons.front().frame;
    return first.height > collapsedHeight && first.y >= displayFrame.y - 1;
}

std::optional<SpacesBarButtons> MissionControlSession::bar(const Rect& displayFrame, int expectedCount) {
    auto buttons = driver_.spacesBarButtons(displayFrame);
    if (!buttons || buttons->size() != static_cast<std::size_t>(expectedCount) ||
        !std::ranges::all_of(*buttons, hasArea, &SpacesBarButton::frame) || !standsOn(*buttons, displayFrame))
        return std::nullopt;
    return buttons;
}

std::optional<SpacesBarButtons> MissionControlSession::expandedBar(const Rect& displayFrame,
                                                                   int expectedCount) {
    auto buttons = bar(displayFrame, expectedCount);
    if (!buttons || !isExpanded(*buttons, displayFrame)) return std::nullopt;
    return buttons;
}

} // namespace lumnara
