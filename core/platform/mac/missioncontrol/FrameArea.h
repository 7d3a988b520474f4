#pragma once

#include "core/model/Geometry.h"

#include <cmath>

namespace lumnara {

/// Whether there is an area to point at. A display or a thumbnail on its way out may report none, or numbers
/// that aren't any.
inline bool hasArea(const Rect& frame) {
    return std::isfinite(frame.x) && std::isfinite(frame.y) && std::isfinite(frame.width) &&
           std::isfinite(frame.height) && frame.width > 0 && frame.height > 0;
}

} // namespace lumnara
