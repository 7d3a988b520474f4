#include "core/platform/sim/SimulatedMac.h"

#include <array>
#include <utility>

namespace lumnara {

namespace {

// Seconds that the window server takes to carry a window to a Space of its own.
constexpr double fullscreenAnimation = 0.6;

constexpr std::array<std::string_view, 13> symbols{"CGSMainConnectionID",
                                                   "CGSCopyManagedDisplaySpaces",
                                                   "CGSGetActiveSpace",
                                                   "CGSManagedDisplayGetCurrentSpace",
                                                   "CGSCopyActiveMenuBarDisplayIdentifier",
                                                   "CGSCopyManagedDisplayForSpace",
                                                   "CGSManagedDisplayIsAnimating",
                                                   "CGSCopyBestManagedDisplayForPoint",
                                                   "CGSCopySpacesForWindows",
                                                   "CGSSpaceGetType",
                                                   "CGSAddWindowsToSpaces",
                                                   "CGSRemoveWindowsFromSpaces",
                                                   "CGWindowListCopyWindowInfo"};

} // namespace

SimulatedMac::SimulatedMac(async::Loop& loop, SimulatedMacOptions options)
    : random_(options.seed),
      layout_(random_, options.separateSpaces),
      stage_(loop, random_, faults_, layout_),
      windows_(layout_),
      apps_(loop, random_, stage_, layout_, windows_, options.systemVersion),
      pointer_(loop, random_, layout_),
      dock_(loop, random_, faults_, stage_, layout_, pointer_),
      shown_(
          stage_.shown.subscribe([this](SpaceID) { happened.emit(WorkspaceEvent::activeSpaceDidChange); })) {
    apps_.launch("Dock", "com.apple.dock", ActivationPolicy::accessory);
    apps_.launch("Finder", "com.apple.finder", ActivationPolicy::regular);
    ownPid_ = apps_.launch("Lumnara", std::nullopt, ActivationPolicy::accessory);
}

void SimulatedMac::addScreen(ScreenInfo screen, int desktops) {
    layout_.addScreen(std::move(screen), desktops);
    happened.emit(WorkspaceEvent::screenParametersDidChange);
}

void SimulatedMac::removeSpace(SpaceID space) {
    const bool wasShown = layout_.isShown(space);
    const auto neighbour = layout_.remove(space);
    if (!neighbour) return;
    windows_.moveOff(space, *neighbour);
    if (wasShown) stage_.shown.emit(*neighbour);
}

SpaceID SimulatedMac::enterFullscreen(WindowNumber window) {
    const SimulatedWindow* found = windows_.find(window);
    if (!found || found->spaces.empty()) return {};
    const auto before = found->spaces;
    const SimulatedDisplay* display = layout_.displayOf(before.front());
    if (!display) return {};
    origins_[window] = before.front();
    const SpaceID space = layout_.addFullscreen(display->uuid, window);
    windows_.removeFromSpaces(window, before);
    windows_.addToSpaces(window, {space});
    apps_.makeKey(window);
    stage_.move(space, fullscreenAnimation);
    return space;
}

void SimulatedMac::leaveFullscreen(WindowNumber window) {
    const SimulatedWindow* found = windows_.find(window);
    const auto origin = origins_.find(window);
    if (!found || origin == origins_.end()) return;
    const SpaceID left = found->spaces.front();
    if (layout_.displayOf(origin->second)) {
        windows_.removeFromSpaces(window, {left});
        windows_.addToSpaces(window, {origin->second});
        if (layout_.isShown(left)) stage_.move(origin->second, 0);
    }
    origins_.erase(origin);
    removeSpace(left);
}

void SimulatedMac::logInAgain() {
    stage_.stop();
    windows_.clear();
    origins_.clear();
    layout_.renumber();
}

std::int32_t SimulatedMac::launch(std::string name, std::optional<std::string> bundleID) {
    return apps_.launch(std::move(name), std::move(bundleID), ActivationPolicy::regular);
}

WindowNumber SimulatedMac::openWindow(std::int32_t pid, SpaceID space) {
    const RunningApplication* owner = apps_.find(pid);
    const SimulatedDisplay* display = layout_.displayOf(space);
    if (!owner || !display) return 0;
    Rect bounds;
    for (const ScreenInfo& screen : layout_.screens())
        if (layout_.displayAt({screen.frame.x + 1, screen.frame.y + 1}) == display) bounds = screen.frame;
    bounds = {bounds.x + bounds.width / 4, bounds.y + bounds.height / 4, bounds.width / 2, bounds.height / 2};
    const WindowNumber window = windows_.add({.ownerPid = pid,
                                              .ownerName = owner->app.name,
                                              .bounds = bounds,
                                              .isOrderedIn = true,
                                              .spaces = {space}});
    apps_.makeKey(window);
    return window;
}

void SimulatedMac::post(const SyntheticEvent& event) {
    if (isTrusted && !isLocked && isOnConsole) dock_.take(event);
}

PropertyDictionary SimulatedMac::sessionDictionary() const {
    PropertyDictionary dictionary{{"kCGSSessionOnConsoleKey", isOnConsole}};
    if (isLocked) dictionary.set("CGSSessionScreenIsLocked", true);
    return dictionary;
}

void SimulatedMac::inject(SimulatedFault fault) {
    switch (fault) {
    case SimulatedFault::gestureLost:
    case SimulatedFault::animationNeverEnds:
    case SimulatedFault::snapBack: faults_.arm(fault); break;
    case SimulatedFault::staleReading: stage_.freezeReadings(random_.between(0.1, 1)); break;
    case SimulatedFault::permissionWithdrawn: isTrusted = false; break;
    case SimulatedFault::symbolMissing: removeSymbol(symbols[random_.below(symbols.size())]); break;
    case SimulatedFault::pointerGrabbed: pointer_.grab(); break;
    }
}

void SimulatedMac::heal() {
    faults_.disarmAll();
    stage_.heal();
    pointer_.letGo();
    missing_.clear();
    isTrusted = true;
}

} // namespace lumnara
