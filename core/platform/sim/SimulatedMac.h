#pragma once

#include "core/async/Signal.h"
#include "core/model/WorkspaceEvent.h"
#include "core/platform/Platform.h"
#include "core/platform/WindowServerCalls.h"
#include "core/platform/sim/SimulatedApps.h"
#include "core/platform/sim/SimulatedDock.h"
#include "core/platform/sim/SimulatedFault.h"
#include "core/platform/sim/SimulatedPointer.h"
#include "core/platform/sim/SimulatedStage.h"
#include "core/platform/sim/SimulatedWindows.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace lumnara {

struct SimulatedMacOptions {
    /// All that is left to chance follows from it.
    std::uint64_t seed = 1;
    /// Displays have Spaces of their own; otherwise they share those of "Main".
    bool separateSpaces = true;
    /// Of macOS, the first number.
    int systemVersion = 14;
};

/// A Mac's session as its programs see it: window server, Dock, applications, pointer. It behaves in time,
/// on the loop's clock, and is what a user or a script does to it. It starts without screens, with the
/// Finder, the Dock and the program itself running. Main thread; it outlives its platform.
class SimulatedMac {
public:
    SimulatedMac(async::Loop& loop, SimulatedMacOptions options = {});

    /// The seams over this Mac. The calls of the window server are looked up here, once.
    Platform platform();
    WindowServerCalls calls();

    void addScreen(ScreenInfo screen, int desktops);
    SpaceID addDesktop(std::string_view display) { return layout_.addDesktop(display); }
    /// Its windows go to a neighbour; the last desktop of a display stays.
    void removeSpace(SpaceID space);
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
    /// An event reaches the Dock only with trust, and while the user is there.
    void post(const SyntheticEvent& event);
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
    SimulatedStage& stage() { return stage_; }
    SimulatedApps& apps() { return apps_; }
    SimulatedPointer& pointer() { return pointer_; }
    SimulatedDock& dock() { return dock_; }

    async::Signal<WorkspaceEvent> happened;

private:
    bool offers(std::string_view symbol) const { return !missing_.contains(symbol); }
    void offerReadings(WindowServerCalls& calls);
    void offerWindows(WindowServerCalls& calls);
    /// The display as the window server tells it, or null.
    const SimulatedDisplay* toldDisplay(std::string_view uuid) const;

    SimulatedRandom random_;
    SimulatedFaults faults_;
    SimulatedLayout layout_;
    SimulatedStage stage_;
    SimulatedWindows windows_;
    SimulatedApps apps_;
    SimulatedPointer pointer_;
    SimulatedDock dock_;
    std::int32_t ownPid_ = 0;
    std::set<std::string, std::less<>> missing_;
    /// Where a full-screen window came from.
    std::map<WindowNumber, SpaceID> origins_;
    async::Subscription shown_;
};

} // namespace lumnara
