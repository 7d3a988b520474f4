#pragma once

#include "core/seams/Screens.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Screens by their display uuid, which is compared in any case.
namespace lumnara::DisplayHelpers {

std::optional<ScreenInfo> screen(Screens& screens, std::string_view uuid);
inline const std::string& uuid(const ScreenInfo& screen) { return screen.uuid; }

/// The screen at the origin of the arrangement, else the first one.
std::optional<ScreenInfo> mainScreen(const std::vector<ScreenInfo>& screens);

/// The first screen whose frame holds the pointer; all its edges belong to it.
std::optional<ScreenInfo> displayUnderCursor(Screens& screens);

/// Whether the screen is the built-in panel.
inline bool isBuiltIn(const ScreenInfo& screen) { return screen.isBuiltIn; }

} // namespace lumnara::DisplayHelpers
