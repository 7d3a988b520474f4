#pragma once

#include <map>
#include <string>

namespace lumnara {

/// How the tiles of one display look. Points.
struct BoardAppearance {
    double tileWidth = 196;
    double nameSize = 18;
    bool operator==(const BoardAppearance&) const = default;
};

/// What the user has set for the Board, with the values of a fresh installation.
struct BoardSettings {
    double boardTileWidth = 196;
    double boardNameSize = 18;
    bool boardOnEveryDisplay = true;
    /// By display key, as SpaceSnapshot::presentationDisplay gives it.
    std::map<std::string, BoardAppearance> boardPerDisplay;

    bool operator==(const BoardSettings&) const = default;

    /// The display's own appearance, or the general one.
    BoardAppearance boardAppearance(const std::string& displayKey) const {
        const auto own = boardPerDisplay.find(displayKey);
        return own != boardPerDisplay.end() ? own->second : BoardAppearance{boardTileWidth, boardNameSize};
    }
};

} // namespace lumnara
