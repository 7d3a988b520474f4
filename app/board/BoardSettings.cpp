#include "app/board/BoardSettings.h"

#include "app/settings/AppSettings.h"
#include "core/text/Text.h"

namespace lumnara {

BoardSettings::Appearance BoardSettings::boardAppearance(std::string_view displayKey) const {
    for (const auto& [display, own] : boardPerDisplay)
        if (text::equalsIgnoringCase(display, displayKey)) return own;
    return {boardTileWidth, boardNameSize};
}

BoardSettings boardSettings(const AppSettings& settings) {
    BoardSettings board{
        settings.boardTileWidth.get(), settings.boardNameSize.get(), settings.boardOnEveryDisplay.get(), {}};
    for (const auto& [display, appearance] : settings.boardPerDisplay.get())
        board.boardPerDisplay[display] = {appearance.tileWidth, appearance.nameSize};
    return board;
}

} // namespace lumnara
