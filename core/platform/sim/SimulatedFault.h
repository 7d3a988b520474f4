#pragma once

#include <array>
#include <set>
#include <string_view>

namespace lumnara {

/// What can go wrong on a Mac, on demand.
enum class SimulatedFault {
    gestureLost,         ///< the Dock does not answer the next swipe
    animationNeverEnds,  ///< the next change of Space begins and does not come to its end
    snapBack,            ///< a while after the next change of Space the display goes back
    staleReading,        ///< for a while the window server tells the layout of now
    permissionWithdrawn, ///< the user takes the Accessibility permission away
    symbolMissing,       ///< a call is not found by whoever looks the calls up from now on
    pointerGrabbed       ///< for a while the user pushes the pointer about
};

inline constexpr std::array everySimulatedFault{
    SimulatedFault::gestureLost,   SimulatedFault::animationNeverEnds,  SimulatedFault::snapBack,
    SimulatedFault::staleReading,  SimulatedFault::permissionWithdrawn, SimulatedFault::symbolMissing,
    SimulatedFault::pointerGrabbed};

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
