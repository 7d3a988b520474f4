#include "app/board/BoardSettings.h"

#include "app/AppSettings.h"

namespace lumnara {

BoardSettings boardSettings(const AppSettings& settings) {
    BoardSettings board{
        settings.boardTileWidth.get(), settings.boardNameSize.get(), settings.boardOnEveryDisplay.get(), {}};
    for (const auto& [display, appearance] : settings.boardPerDisplay.get())
        board.boardPerDisplay[display] = {appearance.tileWidth, appearance.nameSize};
    return board;
}

} // namespace lumnara
