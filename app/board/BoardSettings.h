#pragma once

#include <map>
#include <string>
#include <string_view>

namespace lumnara {

/// What the user has set for the Board, with the values of a fresh installation.
struct BoardSettings {
    /// How the tiles of one display look. Points.
    struct Appearance {
        double tileWidth = 196;
        double nameSize = 18;
        bool operator==(const Appearance&) const = default;
    };

    double boardTileWidth = 196;
    double boardNameSize = 18;
    bool boardOnEveryDisplay = true;
    /// By display key, as SpaceSnapshot::presentationDisplay gives it, in any case.
    std::map<std::string, Appearance> boardPerDisplay;

    bool operator==(const BoardSettings&) const = default;

    /// The display's own appearance, or the general one.
    Appearance boardAppearance(std::string_view displayKey) const;
};

class AppSettings;

/// What the settings say of the Board now.
BoardSettings boardSettings(const AppSettings& settings);

} // namespace lumnara
