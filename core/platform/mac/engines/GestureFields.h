#pragma once

#include "core/seams/EventServices.h"

#include <cstdint>

namespace lumnara {

enum class GesturePhase : std::int64_t { began = 1, changed = 2, ended = 4 };

/// The seven fields of a Dock swipe's event. Their numbers and values are the window server's own and carry
/// no public names; they have to be exact.
struct GestureFields {
    std::int64_t type = 0;    ///< field 55; 30 is a gesture of the Dock
    std::int64_t hidType = 0; ///< field 110; 23 is the Dock swipe
    std::int64_t phase = 0;   ///< field 132; a GesturePhase
    std::int64_t motion = 0;  ///< field 123; 1 is horizontal
    double progress = 0;      ///< field 124
    double velocityX = 0;     ///< field 129
    double velocityY = 0;     ///< field 130

    bool operator==(const GestureFields&) const = default;

    /// The fields read back from an event; one that is not set reads as 0.
    static GestureFields of(const SyntheticEvent& event);
    /// The event of one phase. `sign` is 1.0 or -1.0, `speed` is not negative.
    static SyntheticEvent dockSwipe(GesturePhase phase, double sign, double speed);
};

} // namespace lumnara
