#pragma once

#include "core/platform/sim/MacPicture.h"

#include <QRectF>

class QPainter;

namespace lumnara {

/// Draws a simulated Mac. The painter's units are points of the arrangement of all screens.
void paintMac(QPainter& painter, const MacPicture& picture);

} // namespace lumnara
