#pragma once

#include "app/board/BoardSurface.h"
#include "app/qt/board/TilePainter.h"
#include "app/qt/windows/KeyboardHold.h"
#include "app/qt/windows/ShortcutInhibitor.h"
#include "core/async/Signal.h"

#include <functional>
#include <vector>

namespace lumnara {

class BoardWindow;

/// Makes the Board's windows, one a screen, and lets one of them at a time have the keyboard. The loop
/// outlives it, and it outlives its windows.
class BoardWindows final : public BoardSurfaceFactory {
public:
    /// `isComposited` tells whether a compositor blends windows now; without one the backdrop is solid.
    BoardWindows(async::Loop& loop, std::function<bool()> isComposited);

    std::unique_ptr<BoardSurface> makeSurface(QuickSwitcherModel& model) override;

    /// A window that was put up has handed its first picture to the window system.
    async::Signal<> painted;

private:
    friend class BoardWindow;

    void noteGone();

    async::Loop& loop_;
    std::function<bool()> isComposited_;
    TilePictures pictures_;
    int made_ = 0; ///< windows that there are; without any, no picture is kept
    KeyboardHold keyboard_;
    /// For every window, since the compositor may have the keyboard at another than we asked it to.
    ShortcutInhibitor shortcuts_;
    std::vector<BoardWindow*> shown_;
};

} // namespace lumnara
