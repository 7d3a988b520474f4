#include "core/platform/sim/SimulatedMac.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumnara {

namespace {

// Seconds that the window server takes to carry a window to a Space of its own.
constexpr double fullscreenAnimation = 0.6;

constexpr const char* dockBundleID = "com.apple.dock";

// The window server's numbers of the fields of a mouse event.
constexpr int clickStateField = 1;
constexpr int pressureField = 2;

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

/// The Dock takes gestures from the session, and for the mouse's and the keyboard's own only what comes in
/// below it; of the mouse with the state of the hardware, and with the fields that make press, drags and
/// release one gesture.
bool readsAsInput(const SyntheticEvent& event, EventTap tap) {
    if (std::holds_alternative<BlankEvent>(event.origin)) return tap == EventTap::session;
    const auto* mouse = std::get_if<MouseEvent>(&event.origin);
    if (tap != EventTap::hid || !mouse) return tap == EventTap::hid;
    const bool isHeld = mouse->type == MouseEventType::leftDown || mouse->type == MouseEventType::leftDragged;
    const bool isClick = isHeld || mouse->type == MouseEventType::leftUp;
    return event.source == EventSourceState::hidSystem && (!isClick || event.integer(clickStateField) == 1) &&
           (!isHeld || event.real(pressureField) == 1.0);
}

} // namespace

SimulatedMac::SimulatedMac(async::Loop& loop, SimulatedMacOptions options)
    : loop_(loop),
      random_(options.seed),
      layout_(random_, options.separateSpaces),
      stage_(loop, random_, faults_, layout_),
      windows_(layout_),
      apps_(loop, random_, stage_, layout_, windows_, options.systemVersion),
      pointer_(loop, random_, layout_),
      missionControl_(loop, random_, faults_, stage_, layout_, windows_, pointer_),
      dock_(loop, random_, faults_, stage_, layout_, pointer_, missionControl_),
      dockTree_(options.dockTree),
      shown_(
          stage_.shown.subscribe([this](SpaceID) { happened.emit(WorkspaceEvent::activeSpaceDidChange); })),
      pushed_(pointer_.pushed.subscribe([this](Point to) {
          input({MouseEvent{pointer_.isDown() ? MouseEventType::leftDragged : MouseEventType::moved, to}});
      })),
      dockCameBack_(dock_.cameBack.subscribe([this] { launchDock(); })) {
    missionControl_.removeSpace = [this](SpaceID space) { removeSpace(space); };
    if (options.rearrangesByRecentUse)
        setPreference("mru-spaces", dockBundleID, *options.rearrangesByRecentUse);
    launchDock();
    apps_.launch("Finder", "com.apple.finder", ActivationPolicy::regular);
    ownPid_ = apps_.launch("Lumnara", std::nullopt, ActivationPolicy::accessory);
}

void SimulatedMac::addScreen(ScreenInfo screen, int desktops) {
    layout_.addScreen(std::move(screen), desktops);
    happened.emit(WorkspaceEvent::screenParametersDidChange);
}

void SimulatedMac::removeScreen(std::string_view uuid) {
    const auto before = layout_.screens();
    layout_.removeScreen(uuid);
    const auto& left = layout_.screens();
    if (left.size() == before.size()) return;
    const auto gone = std::ranges::find_if(
        before, [&](const ScreenInfo& screen) { return std::ranges::count(left, screen) == 0; });
    windows_.moveBounds(gone->frame, left.front().frame);
    if (gone->frame.contains(pointer_.position())) pointer_.moveTo(left.front().frame.middle());
    missionControl_.dismiss();
    happened.emit(WorkspaceEvent::screenParametersDidChange);
}

void SimulatedMac::moveScreens(const std::vector<Rect>& frames) {
    const auto before = layout_.screens();
    layout_.moveScreens(frames);
    if (layout_.screens() == before) return;
    // All from where they were: the new place of one screen may be the old one of another.
    for (const SimulatedWindow& window : windows_.all()) {
        const auto on = std::ranges::find_if(
            before, [&](const ScreenInfo& screen) { return screen.frame.contains(window.bounds.middle()); });
        if (on == before.end()) continue;
        const Rect& from = on->frame;
        const Rect& to = frames.at(static_cast<std::size_t>(on - before.begin()));
        const double across = to.width / from.width, down = to.height / from.height;
        windows_.place(window.number,
                       {to.x + (window.bounds.x - from.x) * across, to.y + (window.bounds.y - from.y) * down,
                        window.bounds.width * across, window.bounds.height * down});
    }
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
    missionControl_.vanish();
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

void SimulatedMac::post(const SyntheticEvent& event, EventTap tap) {
    if (isTrusted && readsAsInput(event, tap)) input(event);
}

void SimulatedMac::input(const SyntheticEvent& event) {
    if (isLocked || !isOnConsole) return;
    if (const auto* mouse = std::get_if<MouseEvent>(&event.origin)) pointer_.take(*mouse);
    dock_.take(event);
    missionControl_.changed.emit();
}

void SimulatedMac::warpPointer(Point to) {
    pointer_.moveTo(to);
    missionControl_.changed.emit();
}

bool SimulatedMac::openFile(std::string_view path) {
    if (path != missionControlApplication) return false;
    if (!dock_.isAway()) missionControl_.toggle();
    return true;
}

void SimulatedMac::setPreference(std::string_view key, std::string_view application,
                                 std::optional<PropertyValue> value) {
    const std::pair place{std::string(application), std::string(key)};
    if (value)
        preferences_.insert_or_assign(place, *std::move(value));
    else
        preferences_.erase(place);
}

std::optional<PropertyValue> SimulatedMac::preference(std::string_view key,
                                                      std::string_view application) const {
    const auto found = preferences_.find({std::string(application), std::string(key)});
    return found == preferences_.end() ? std::nullopt : std::optional(found->second);
}

void SimulatedMac::launchDock() {
    dockPid_ = apps_.launch("Dock", dockBundleID, ActivationPolicy::accessory);
    missionControl_.dockPid = dockPid_;
}

void SimulatedMac::restartDock() {
    missionControl_.vanish();
    apps_.quit(dockPid_);
    dock_.goAway(random_.between(0.5, 1.5));
}

void SimulatedMac::click() {
    if (!pointer_.isDown()) input({MouseEvent{MouseEventType::leftDown, pointer_.position()}});
    input({MouseEvent{MouseEventType::leftUp, pointer_.position()}});
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
    case SimulatedFault::userClicks: click(); break;
    case SimulatedFault::userEscapes: input({KeyEvent{KeyCode::escape, true}}); break;
    case SimulatedFault::barCollapses: missionControl_.collapseBars(); break;
    case SimulatedFault::thumbnailsShift:
        missionControl_.shift(random_.between(-90, 90), random_.between(0.3, 3));
        break;
    case SimulatedFault::dockRestarted: restartDock(); break;
    }
}

void SimulatedMac::heal() {
    faults_.disarmAll();
    stage_.heal();
    missionControl_.heal();
    pointer_.letGo();
    missing_.clear();
    isTrusted = true;
}

} // namespace lumnara
