#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// The keys of a desktop file's main group with their values as they stand there, escaped; of a key that
/// stands twice the first. Nothing where the group is missing.
using DesktopFileKeys = std::map<std::string, std::string, std::less<>>;
std::optional<DesktopFileKeys> desktopFileKeys(std::string_view text);

/// What a desktop file says of an application, in the form that freedesktop.org lays down (Desktop Entry,
/// version 1.5).
struct DesktopEntry {
    std::string name; ///< in the user's language if there is one, else as it stands
    std::string exec;
    std::string tryExec;
    std::string icon;
    std::string workingFolder;
    std::string startupWMClass;
    bool needsTerminal = false;
    bool isHidden = false; ///< to be treated as if it were deleted

    bool operator==(const DesktopEntry&) const = default;

    /// Nothing for a text without a main group, or of another type than Application. `locale` is the user's,
    /// "de_DE.UTF-8".
    static std::optional<DesktopEntry> parse(std::string_view text, std::string_view locale);

    /// The arguments of Exec without files or addresses to open, field codes filled in; `file` is the desktop
    /// file's own path. Nothing for a line that the format doesn't allow.
    std::optional<std::vector<std::string>> command(const std::filesystem::path& file) const;
};

} // namespace lumnara
