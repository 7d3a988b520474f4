#pragma once

#include "core/platform/sim/SimulatedMac.h"

#include <vector>

namespace lumnara {

/// A Mac in use, to be watched and tried: a screen for each frame, desktops with windows of several
/// applications, one of them full screen. The frames are in points of the arrangement, left to right; screens
/// beyond the third stay empty.
void furnish(SimulatedMac& mac, const std::vector<Rect>& frames);

} // namespace lumnara
