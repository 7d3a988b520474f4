#pragma once

#include <array>
#include <set>
#include <string_view>

namespace lumnara {

/// What can go wrong on a Mac, on demand.
enum class SimulatedFault {
    gestureLost,         ///< the Dock does not answer the next swipe, press of the button or Escape
    animationNeverEnds,  ///< the next change of Space, or opening of Mission Control, begins and does not end
    snapBack,            ///< a while after the next change of Space, or drop of a thumbnail, all is as before
    staleReading,        ///< for a while the window server tells the layout of now
    permissionWithdrawn, ///< the user takes the Accessibility permission away
    symbolMissing,       ///< a call is not found by whoever looks the calls up from now on
    pointerGrabbed,      ///< for a while the user pushes the pointer about
    userClicks,          ///< the user lets go of a button that is down, or clicks where the pointer is
    userEscapes,         ///< the user presses Escape
    barCollapses,        ///< the Spaces bars collapse
    thumbnailsShift,     ///< for a while all thumbnails stand beside their places
    dockRestarted        ///< the Dock goes away, with Mission Control, and comes back a while later
};

inline constexpr std::array everySimulatedFault{
    SimulatedFault::gestureLost,    SimulatedFault::animationNeverEnds,  SimulatedFault::snapBack,
    SimulatedFault::staleReading,   SimulatedFault::permissionWithdrawn, SimulatedFault::symbolMissing,
    SimulatedFault::pointerGrabbed, SimulatedFault::userClicks,          SimulatedFault::userEscapes,
    SimulatedFault::barCollapses,   SimulatedFault::thumbnailsShift,     SimulatedFault::dockRestarted};

/// "gesture lost" and so on.
std::string_view nameOf(SimulatedFault fault);

/// Faults that wait for their occasion; each befalls one occasion.
class SimulatedFaults {
public:
    void arm(SimulatedFault fault) { armed_.insert(fault); }
    /// Whether the fault was armed; it no longer is.
    bool befalls(SimulatedFault fault) { return armed_.erase(fault) > 0; }
    void disarmAll() { armed_.clear(); }

private:
    std::set<SimulatedFault> armed_;
};

} // namespace lumnara
