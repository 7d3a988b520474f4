#pragma once

#include "core/seams/LoginItem.h"

#include <filesystem>
#include <string>

namespace lumnara {

/// Starts the program with the session by a desktop file in the user's XDG autostart folder. GNOME, KDE,
/// Xfce and their like read that folder; under a bare window manager it takes a starter such as dex.
class AutostartEntry : public LoginItem {
public:
    /// `file` is "lumnara.desktop" in the folder "autostart" of the user's configuration; `program` the
    /// absolute path of what it starts.
    AutostartEntry(std::filesystem::path file, std::filesystem::path program);

    /// Whether the entry is there and isn't switched off inside, as the desktops' own settings do it.
    bool isRegistered() const override;

    /// Writes a fresh entry, or removes it. Throws std::system_error.
    void setRegistered(bool registered) override;

private:
    const std::filesystem::path file_;
    const std::filesystem::path program_;
};

} // namespace lumnara
