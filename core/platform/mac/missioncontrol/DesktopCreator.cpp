#include "core/platform/mac/missioncontrol/DesktopCreator.h"

#include "core/async/Task.h"
#include "core/base/Log.h"

#include <fmt/core.h>

namespace lumnara {

namespace {

/// Seconds from the request for Mission Control to the hover, from there to the press, and on to the end.
constexpr double beforeHover = 0.7;
constexpr double beforePress = 0.6;
constexpr double beforeEnd = 0.6;

/// The add button appears where the pointer rests at the top right.
Point hoverPointOf(const Rect& screen) { return {screen.x + screen.width - 8, screen.y + 60}; }

/// "{{x, y}, {width, height}}", whole numbers without a fraction.
std::string textOf(const std::optional<Rect>& frame) {
    if (!frame) return "unknown";
    return fmt::format("{{{{{}, {}}}, {{{}, {}}}}}", frame->x, frame->y, frame->width, frame->height);
}

} // namespace

async::Task<> DesktopCreator::create(Rect screen, std::optional<Rect> displayFrame, int existingCount) {
    if (!driver_.isAccessibilityTrusted()) throw Failure(Failure::Case::accessibility);
    if (existingCount >= desktopsPerDisplay) throw Failure(Failure::Case::atCap);
    log(fmt::format("Lumnara new desktop: {} on display, opening Mission Control", existingCount));
    const Point pointer = driver_.pointerLocation();
    driver_.open();
    co_await driver_.pause(beforeHover);
    driver_.movePointer(hoverPointOf(screen));
    co_await driver_.pause(beforePress);
    const bool pressed = pressAddButton(displayFrame);
    driver_.pressEscape();
    co_await driver_.pause(beforeEnd);
    co_await session_.awaitClosing();
    driver_.warpPointer(pointer);
    if (!pressed) throw Failure(Failure::Case::buttonMissing);
}

bool DesktopCreator::pressAddButton(const std::optional<Rect>& displayFrame) {
    bool pressed = adding_.addDesktop(displayFrame);
    if (!pressed) {
        log("Lumnara new desktop: no mc.spaces.add for the display, pressing the first add button");
        pressed = adding_.addDesktopByDescription();
    }
    log(fmt::format("Lumnara new desktop: add button {} for display at {}", pressed ? "pressed" : "not found",
                    textOf(displayFrame)));
    return pressed;
}

} // namespace lumnara
