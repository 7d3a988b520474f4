#include "tests/simruns/WatchedDriver.h"

#include <fmt/core.h>
#include <utility>

namespace lumnara::testing {

namespace {

std::string textOf(Point point) { return fmt::format("({:.0f}, {:.0f})", point.x, point.y); }

std::string textOf(const std::optional<SpacesBarButtons>& bar) {
    if (!bar) return "no bar";
    if (bar->empty()) return "an empty bar";
    std::string titles;
    for (const SpacesBarButton& button : *bar) titles += (titles.empty() ? "" : ", ") + button.title;
    return fmt::format("{:.0f} pt tall: {}", bar->front().frame.height, titles);
}

} // namespace

void WatchedDriver::begin(int& count, const std::string& what) {
    ++count;
    restsAfterWarp = false;
    if (onCall) onCall();
    if (!what.empty()) step(what);
}

void WatchedDriver::step(const std::string& what) {
    if (!onStep) return;
    tellDrags();
    onStep(fmt::format("{:6.2f} s  {}", async::secondsOf(loop_.now()), what));
}

void WatchedDriver::tellDrags() {
    const int drags = std::exchange(untold_, 0);
    if (drags > 0) step(fmt::format("{} drags to {}", drags, textOf(draggedTo_)));
}

void WatchedDriver::open() {
    begin(opens, "open Mission Control");
    DockMissionControlDriver::open();
}

void WatchedDriver::pressEscape() {
    begin(escapes, "Escape");
    DockMissionControlDriver::pressEscape();
}

std::optional<SpacesBarButtons> WatchedDriver::spacesBarButtons(const std::optional<Rect>& displayFrame) {
    begin(looks, "");
    lastBar = DockMissionControlDriver::spacesBarButtons(displayFrame);
    step("bar read, " + textOf(lastBar));
    return lastBar;
}

bool WatchedDriver::removeDesktop(int index, const std::string& title) {
    begin(removals, "");
    const bool removed = DockMissionControlDriver::removeDesktop(index, title);
    step(fmt::format("remove \"{}\" at {}: {}", title, index, removed ? "accepted" : "refused"));
    return removed;
}

void WatchedDriver::movePointer(Point to) {
    begin(moves, "move to " + textOf(to));
    DockMissionControlDriver::movePointer(to);
}

void WatchedDriver::pressPointer(Point at) {
    begin(presses, "press at " + textOf(at));
    DockMissionControlDriver::pressPointer(at);
}

void WatchedDriver::dragPointer(Point to) {
    begin(drags, "");
    ++untold_;
    draggedTo_ = to;
    DockMissionControlDriver::dragPointer(to);
}

void WatchedDriver::releasePointer(Point at) {
    begin(releases, "release at " + textOf(at));
    DockMissionControlDriver::releasePointer(at);
}

Point WatchedDriver::pointerLocation() {
    asked = DockMissionControlDriver::pointerLocation();
    return *asked;
}

void WatchedDriver::warpPointer(Point to) {
    if (onCall) onCall();
    warped = to;
    restsAfterWarp = true;
    step("pointer put back to " + textOf(to));
    DockMissionControlDriver::warpPointer(to);
}

bool WatchedDriver::addDesktop(const std::optional<Rect>& displayFrame) {
    const bool pressed = DockMissionControlDriver::addDesktop(displayFrame);
    step(pressed ? "add button pressed" : "no add button");
    return pressed;
}

bool WatchedDriver::addDesktopByDescription() {
    const bool pressed = DockMissionControlDriver::addDesktopByDescription();
    step(pressed ? "described add button pressed" : "no described add button");
    return pressed;
}

} // namespace lumnara::testing
