#include "core/platform/sim/SimulatedWindows.h"

#include <algorithm>
#include <utility>

namespace lumnara {

const SimulatedWindow* SimulatedWindows::find(WindowNumber number) const {
    const auto found = std::ranges::find(windows_, number, &SimulatedWindow::number);
    return found == windows_.end() ? nullptr : &*found;
}

WindowNumber SimulatedWindows::add(SimulatedWindow window) {
    window.number = ++lastNumber_;
    insertInFront(std::move(window));
    return lastNumber_;
}

void SimulatedWindows::remove(WindowNumber number) {
    std::erase_if(windows_, [=](const SimulatedWindow& window) { return window.number == number; });
}

void SimulatedWindows::removeAllOf(std::int32_t pid) {
    std::erase_if(windows_, [=](const SimulatedWindow& window) { return window.ownerPid == pid; });
}

void SimulatedWindows::clear() { windows_.clear(); }

void SimulatedWindows::orderFront(WindowNumber number) {
    const auto found = position(number);
    if (found == windows_.end()) return;
    SimulatedWindow window = std::move(*found);
    windows_.erase(found);
    window.isOrderedIn = true;
    const SimulatedDisplay* display = layout_.displayAt(window.bounds.middle());
    if (window.spaces.empty() && display) window.spaces = {spaceFor(window, *display, display->current)};
    insertInFront(std::move(window));
}

void SimulatedWindows::orderOut(WindowNumber number) {
    const auto found = position(number);
    if (found != windows_.end()) found->isOrderedIn = false;
}

void SimulatedWindows::place(WindowNumber number, Rect bounds) {
    const auto window = position(number);
    if (window != windows_.end()) window->bounds = bounds;
}

void SimulatedWindows::addToSpaces(WindowNumber number, const std::vector<SpaceID>& spaces) {
    const auto window = position(number);
    if (window == windows_.end()) return;
    for (const SpaceID id : spaces) {
        const SimulatedDisplay* display = layout_.displayOf(id);
        const SimulatedSpace* space = display ? display->find(id) : nullptr;
        if (!space || std::ranges::count(window->spaces, id) > 0) continue;
        if (takes(*space, *window)) window->spaces.push_back(id);
    }
}

void SimulatedWindows::removeFromSpaces(WindowNumber number, const std::vector<SpaceID>& spaces) {
    const auto window = position(number);
    if (window == windows_.end()) return;
    std::erase_if(window->spaces, [&](SpaceID id) { return std::ranges::count(spaces, id) > 0; });
}

void SimulatedWindows::moveOff(SpaceID from, SpaceID to) {
    const SimulatedDisplay* display = layout_.displayOf(to);
    for (SimulatedWindow& window : windows_) {
        const bool wasThere = std::erase(window.spaces, from) > 0;
        if (wasThere && window.spaces.empty()) window.spaces = {spaceFor(window, *display, to)};
    }
}

void SimulatedWindows::moveBounds(const Rect& from, const Rect& to) {
    for (SimulatedWindow& window : windows_) {
        if (!from.contains(window.bounds.middle())) continue;
        window.bounds.x += to.x - from.x;
        window.bounds.y += to.y - from.y;
    }
}

bool SimulatedWindows::isOnScreen(const SimulatedWindow& window) const {
    return window.isOrderedIn && window.alpha > 0 &&
           (window.isOnEverySpace ||
            std::ranges::any_of(window.spaces, [this](SpaceID id) { return layout_.isShown(id); }));
}

PropertyList SimulatedWindows::list(WindowListOption option) const {
    const auto asks = [option](WindowListOption bit) {
        return (static_cast<std::uint32_t>(option) & static_cast<std::uint32_t>(bit)) != 0;
    };
    const bool onScreenOnly = asks(WindowListOption::onScreenOnly);
    const bool withoutDesktop = asks(WindowListOption::allWithoutDesktop);
    PropertyList entries;
    for (const SimulatedWindow& window : windows_) {
        const bool isDesktopElement = window.layer < 0;
        if (onScreenOnly && !isOnScreen(window)) continue;
        if (withoutDesktop && isDesktopElement) continue;
        entries.push_back({{"kCGWindowNumber", window.number},
                           {"kCGWindowOwnerPID", window.ownerPid},
                           {"kCGWindowOwnerName", window.ownerName},
                           {"kCGWindowLayer", window.layer},
                           {"kCGWindowAlpha", window.alpha},
                           {"kCGWindowBounds", PropertyDictionary{{"X", window.bounds.x},
                                                                  {"Y", window.bounds.y},
                                                                  {"Width", window.bounds.width},
                                                                  {"Height", window.bounds.height}}}});
    }
    return entries;
}

bool SimulatedWindows::takes(const SimulatedSpace& space, const SimulatedWindow& window) const {
    const SimulatedWindow* fullscreen = find(space.fullscreenWindow);
    return space.kind != SpaceKind::fullscreen || (fullscreen && fullscreen->ownerPid == window.ownerPid);
}

SpaceID SimulatedWindows::spaceFor(const SimulatedWindow& window, const SimulatedDisplay& display,
                                   SpaceID wanted) const {
    if (takes(*display.find(wanted), window)) return wanted;
    return std::ranges::find(display.spaces, SpaceKind::user, &SimulatedSpace::kind)->id;
}

std::vector<SimulatedWindow>::iterator SimulatedWindows::position(WindowNumber number) {
    return std::ranges::find(windows_, number, &SimulatedWindow::number);
}

void SimulatedWindows::insertInFront(SimulatedWindow window) {
    const auto behind = std::ranges::find_if(
        windows_, [&](const SimulatedWindow& other) { return other.layer <= window.layer; });
    windows_.insert(behind, std::move(window));
}

} // namespace lumnara
