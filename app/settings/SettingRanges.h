#pragma once

namespace lumnara {

/// What the user may choose for a number. A store may hold any other, which stands until the user chooses.
struct SettingRange {
    double least = 0;
    double most = 0;
    double step = 1;
};

namespace settingRanges {
inline constexpr SettingRange switchOverlayDuration{0.5, 3, 0.1}; ///< seconds
inline constexpr SettingRange boardTileWidth{140, 320, 2};        ///< points
inline constexpr SettingRange boardNameSize{12, 28, 1};           ///< points
} // namespace settingRanges

} // namespace lumnara
