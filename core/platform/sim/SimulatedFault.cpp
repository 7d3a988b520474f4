#include "core/platform/sim/SimulatedFault.h"

namespace lumnara {

std::string_view nameOf(SimulatedFault fault) {
    switch (fault) {
    case SimulatedFault::gestureLost: return "gesture lost";
    case SimulatedFault::animationNeverEnds: return "animation never ends";
    case SimulatedFault::snapBack: return "snap back";
    case SimulatedFault::staleReading: return "stale reading";
    case SimulatedFault::permissionWithdrawn: return "permission withdrawn";
    case SimulatedFault::symbolMissing: return "symbol missing";
    case SimulatedFault::pointerGrabbed: return "pointer grabbed";
    case SimulatedFault::userClicks: return "user clicks";
    case SimulatedFault::userEscapes: return "user escapes";
    case SimulatedFault::barCollapses: return "bar collapses";
    case SimulatedFault::thumbnailsShift: return "thumbnails shift";
    case SimulatedFault::dockRestarted: return "Dock restarted";
    }
    return {};
}

} // namespace lumnara
