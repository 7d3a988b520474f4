#pragma once

#include "core/model/Geometry.h"

#include <memory>

class QObject;
class QPointF;
class QRect;
class QScreen;
class QWidget;

namespace lumnara {

struct ScreenInfo;

/// Whether a window may stand where it likes, out of the window manager's hands. So it is under X11; under
/// Wayland the compositor decides.
bool placesOwnWindows();

/// The toolkit's screen for the platform's: by its connector, else by its place; the first screen for one
/// that the toolkit doesn't know.
QScreen* screenFor(const ScreenInfo& info);

/// Where the platform's screen lies on the toolkit's virtual desktop: all of the toolkit's screen, or for one
/// without a connector, which no monitor shows by itself, the part of a screen that its frame covers.
QRect areaOf(const ScreenInfo& info);

/// How many of the arrangement's units, in which the platform tells of screens and the pointer, a logical
/// pixel of the screen has.
double unitsPerPoint(const QScreen& screen);
/// A place of the toolkit's virtual desktop in the arrangement of screens.
Point arrangementPoint(const QPointF& global);

/// Draws a window that was shown once whenever the compositor tells it of a new state, as long as the result
/// lives. A compositor shows nothing new on any screen before it has a picture made in the state that it told
/// of, or lost patience, and the toolkit makes none when the size stays.
std::unique_ptr<QObject> drawingAtEachConfigure(QWidget& window);

} // namespace lumnara
