#pragma once

#include "core/platform/linux/Environment.h"

#include <filesystem>

namespace lumnara {

/// Where the system keeps its files in a Linux session: the folder "Lumnara" inside the user's base
/// directories, where the XDG base directories are. None is created here.
struct XdgFolders {
    std::filesystem::path data;   ///< what the user made: names, automations, notes, times
    std::filesystem::path config; ///< settings
    std::filesystem::path state;  ///< what may be lost, such as window places

    /// The user's home folder: HOME, or else what the user database has.
    static std::filesystem::path home(const Environment& environment);
    /// A base directory that isn't an absolute path counts as unset.
    static XdgFolders of(const Environment& environment);
    bool operator==(const XdgFolders&) const = default;
};

} // namespace lumnara
