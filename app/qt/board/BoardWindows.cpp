#include "app/qt/board/BoardWindows.h"

#include "app/qt/board/BoardPainter.h"
#include "app/qt/board/BoardWindow.h"

namespace lumnara {

BoardWindows::BoardWindows(async::Loop& loop, std::function<bool()> isComposited)
    : loop_(loop),
      isComposited_(std::move(isComposited)),
      keyboard_(loop) {}

std::unique_ptr<BoardSurface> BoardWindows::makeSurface(QuickSwitcherModel& model) {
    return std::make_unique<BoardWindow>(*this, model);
}

} // namespace lumnara
