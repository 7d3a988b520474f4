#pragma once

class QScreen;

namespace lumnara {

struct ScreenInfo;

/// Whether a window may stand where it likes, out of the window manager's hands. So it is under X11; under
/// Wayland the compositor decides.
bool placesOwnWindows();

/// The toolkit's screen for the platform's: by its connector, else by its place; the first screen for one
/// that the toolkit doesn't know.
QScreen* screenFor(const ScreenInfo& info);

} // namespace lumnara
