#include "app/qt/board/BoardWindows.h"

#include "app/qt/board/BoardPainter.h"
#include "app/qt/board/BoardWindow.h"

#include <malloc.h>

namespace lumnara {

BoardWindows::BoardWindows(async::Loop& loop, std::function<bool()> isComposited)
    : loop_(loop),
      isComposited_(std::move(isComposited)),
      keyboard_(loop) {}

std::unique_ptr<BoardSurface> BoardWindows::makeSurface(QuickSwitcherModel& model) {
    return std::make_unique<BoardWindow>(*this, model);
}

/// What the last window leaves behind goes back to the system.
void BoardWindows::noteGone() {
    if (--made_ > 0) return;
    pictures_.clear();
    ::malloc_trim(0);
}

} // namespace lumnara
