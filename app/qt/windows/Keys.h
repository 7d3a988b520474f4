#pragma once

#include "app/board/KeyPress.h"

class QKeyEvent;

namespace lumnara {

/// The key in the system's own vocabulary. Where the layout gives a key another letter than a Latin one, its
/// place on the keyboard decides, so that shortcuts work on every layout.
KeyPress keyPressOf(const QKeyEvent& event);

/// Shift, Alt and the like, which mean nothing alone.
bool isModifierKey(const QKeyEvent& event);

} // namespace lumnara
