#pragma once

#include "core/async/Signal.h"
#include "core/platform/mac/MacPlatform.h"
#include "core/platform/mac/server/WindowServerCalls.h"
#include "core/platform/sim/SimulatedApps.h"
#include "core/platform/sim/SimulatedDock.h"
#include "core/platform/sim/SimulatedFault.h"
#include "core/platform/sim/SimulatedMissionControl.h"
#include "core/platform/sim/SimulatedPointer.h"
#include "core/platform/sim/SimulatedStage.h"
#include "core/platform/sim/SimulatedWindows.h"
#include "core/seams/WorkspaceEvent.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace lumnara {

/// The layouts of the Dock's elements that systems have had.
enum class SimulatedDockTree {
    older, ///< "mc.spaces" holds the thumbnails and the add button
    newer  ///< "mc.spaces.list" holds the thumbnails, with the add button beside it
};

struct SimulatedMacOptions {
    /// All that is left to chance follows from it.
    std::uint64_t seed = 1;
    /// Displays have Spaces of their own; otherwise they share those of "Main".
    bool separateSpaces = true;
    /// Of macOS, the first number.
    int systemVersion = 14;
    /// What the user has set for "mru-spaces"; nothing when it was never set, which means on.
    std::optional<bool> rearrangesByRecentUse = false;
    /// How the Dock's elements are laid out.
    SimulatedDockTree dockTree = SimulatedDockTree::newer;
};

/// A Mac's session as its programs see it: window server, Dock, applications, pointer. It behaves in time,
/// on the loop's clock, and is what a user or a script does to it. It starts without screens, with the
/// Finder, the Dock and the program itself running. Main thread; it outlives its platform.
class SimulatedMac {
public:
    SimulatedMac(async::Loop& loop, SimulatedMacOptions options = {});

    /// The seams over this Mac. The calls of the window server are looked up here, once.
    MacSeams seams();
    /// The whole platform on such seams.
    Platform platform();
    WindowServerCalls calls();

    /// Plugs a screen in. One that was here before brings its desktops back, as far as there still are any.
    void addScreen(ScreenInfo screen, int desktops);
    /// Unplugs a screen; the first of the others takes its desktops with their windows. The last one stays.
    void removeScreen(std::string_view uuid);
    /// Gives all screens, in their order, other places or sizes; the windows keep theirs on them.
    void moveScreens(const std::vector<Rect>& frames);
    /// The Mac has slept and is awake again.
    void wake() { happened.emit(WorkspaceEvent::didWake); }
    SpaceID addDesktop(std::string_view display) { return layout_.addDesktop(display); }
    /// Its windows go to a neighbour; the last desktop of a display stays.
    void removeSpace(SpaceID space);
    /// The user gives it another place on its display.
    void moveSpace(SpaceID space, std::size_t place) { layout_.moveTo(space, place); }
    /// Gives the window a Space of its own, to which its display then moves. 0 without such a window.
    SpaceID enterFullscreen(WindowNumber window);
    void leaveFullscreen(WindowNumber window);
    /// Every Space has another id afterwards; the windows are gone.
    void logInAgain();

    std::int32_t launch(std::string name, std::optional<std::string> bundleID);
    /// Opens an ordinary window there, in front.
    WindowNumber openWindow(std::int32_t pid, SpaceID space);
    /// The program that runs on this Mac.
    std::int32_t ownPid() const { return ownPid_; }

    bool isTrusted = true;
    bool isLocked = false;
    bool isOnConsole = true;
    /// An event of a program: it gets through only with trust, while the user is there, and when it reads as
    /// the user's own would.
    void post(const SyntheticEvent& event, EventTap tap);
    /// Puts the pointer there without an event.
    void warpPointer(Point to);
    /// An event of the user's own mouse and keyboard.
    void input(const SyntheticEvent& event);
    /// The user lets go of the button, or clicks where the pointer is.
    void click();
    static constexpr std::string_view missionControlApplication = "/System/Applications/Mission Control.app";
    /// Opens an application, as far as this Mac has it: Mission Control. False for all else.
    bool openFile(std::string_view path);
    /// Sets a key in another program's settings; nothing takes it away.
    void setPreference(std::string_view key, std::string_view application,
                       std::optional<PropertyValue> value);
    std::optional<PropertyValue> preference(std::string_view key, std::string_view application) const;
    /// With the keys that there are in this state.
    PropertyDictionary sessionDictionary() const;

    void inject(SimulatedFault fault);
    /// Takes one call away, by its name ("CGSGetActiveSpace"), from those who look the calls up later.
    void removeSymbol(std::string_view name) { missing_.emplace(name); }
    /// All faults are over: what hangs goes on, the permission is back.
    void heal();

    const SimulatedLayout& layout() const { return layout_; }
    const SimulatedWindows& windows() const { return windows_; }
    SimulatedWindows& windows() { return windows_; }
    const SimulatedStage& stage() const { return stage_; }
    SimulatedStage& stage() { return stage_; }
    SimulatedApps& apps() { return apps_; }
    SimulatedPointer& pointer() { return pointer_; }
    SimulatedDock& dock() { return dock_; }
    SimulatedMissionControl& missionControl() { return missionControl_; }
    const SimulatedMissionControl& missionControl() const { return missionControl_; }
    SimulatedDockTree dockTree() const { return dockTree_; }
    std::int32_t dockPid() const { return dockPid_; }

    async::Signal<WorkspaceEvent> happened;

private:
    void launchDock();
    void restartDock();
    bool offers(std::string_view symbol) const { return !missing_.contains(symbol); }
    void offerReadings(WindowServerCalls& calls);
    void offerWindows(WindowServerCalls& calls);
    /// The display as the window server tells it, or null.
    const SimulatedDisplay* toldDisplay(std::string_view uuid) const;

    async::Loop& loop_;
    SimulatedRandom random_;
    SimulatedFaults faults_;
    SimulatedLayout layout_;
    SimulatedStage stage_;
    SimulatedWindows windows_;
    SimulatedApps apps_;
    SimulatedPointer pointer_;
    SimulatedMissionControl missionControl_;
    SimulatedDock dock_;
    SimulatedDockTree dockTree_;
    std::int32_t ownPid_ = 0;
    std::int32_t dockPid_ = 0;
    std::set<std::string, std::less<>> missing_;
    /// Where a full-screen window came from.
    std::map<WindowNumber, SpaceID> origins_;
    /// By application and key.
    std::map<std::pair<std::string, std::string>, PropertyValue> preferences_;
    async::Subscription shown_;
    async::Subscription pushed_;
    async::Subscription dockCameBack_;
};

} // namespace lumnara
