#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// Desktop keys as names of files: percent-encoded UTF-8, in which only letters and numbers, of every
/// script, stand for themselves.
namespace NoteFileName {

inline constexpr std::string_view bodySuffix = ".rtfd";
inline constexpr std::string_view metaSuffix = ".json";

std::string encode(std::string_view key);
/// Nothing when a percent sign isn't followed by two hexadecimal digits.
std::optional<std::string> decode(std::string_view name);

} // namespace NoteFileName

} // namespace lumnara
