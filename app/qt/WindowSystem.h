#pragma once

#include <memory>

class QObject;
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

/// Draws a window that was shown once whenever the compositor tells it of a new state, as long as the result
/// lives. A compositor shows nothing new on any screen before it has a picture made in the state that it told
/// of, or lost patience, and the toolkit makes none when the size stays.
std::unique_ptr<QObject> drawingAtEachConfigure(QWidget& window);

} // namespace lumnara
