#pragma once

#include "core/catalog/Desktop.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// The colour and the symbol of a desktop whose user has chosen none: made from its name, so a name looks
/// the same on every start. Pure functions; any thread.
namespace lumnara::DesktopAppearance {

/// Hexadecimal RGB.
inline constexpr std::array<std::string_view, 10> palette = {
    "#6690E0", "#7C7BE0", "#9A72DD", "#BE6FD0", "#DC6BA8",
    "#DE6C7C", "#C98A5E", "#86A85A", "#5CAE7E", "#4E9FC4",
};
inline constexpr std::array<std::string_view, 6> symbols = {
    "square.grid.2x2", "circle.grid.2x2", "square.stack", "rectangle.3.group", "diamond", "hexagon",
};

/// FNV-1a in 64 bits over the UTF-8 bytes of the lowercased name.
std::uint64_t hash(std::string_view name);

/// A palette entry; nothing for a blank name.
std::optional<std::string_view> suggestedColor(std::string_view name);

/// The symbol to draw: the user's icon, else "macwindow" for a full-screen Space, "square.dashed" for a
/// desktop without a name, and one of `symbols` for any other.
std::string symbol(const Desktop& desktop);

} // namespace lumnara::DesktopAppearance
