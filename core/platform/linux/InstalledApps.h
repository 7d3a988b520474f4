#pragma once

#include "core/platform/linux/DesktopEntry.h"
#include "core/platform/linux/Environment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// An application by its desktop file.
struct InstalledApp {
    std::string id; ///< "org.gnome.Notes", without ".desktop"
    std::filesystem::path file;
    DesktopEntry entry;

    bool operator==(const InstalledApp&) const = default;
};

/// The applications of the XDG data folders, read afresh at each question. Where several folders hold the
/// same id, the first one's stands, also to say that the application is hidden.
class InstalledApps {
public:
    explicit InstalledApps(const Environment& environment);

    /// The application of a desktop-file id, with or without ".desktop" and in any case; of a window class;
    /// or of a bundle id of the Mac where a known application stands for it. Nothing when none is installed.
    std::optional<InstalledApp> find(std::string_view bundleID) const;

    /// The absolute path of a program by its name in PATH, or of an absolute path; nothing when it isn't
    /// there or can't be executed.
    std::optional<std::filesystem::path> program(std::string_view name) const;

private:
    static constexpr int deepestFolder = 8; ///< beyond it links lead round in circles

    struct File {
        std::string id;
        std::filesystem::path path;
    };
    std::vector<File> desktopFiles() const;
    std::optional<InstalledApp> read(const File& file) const;

    std::vector<std::filesystem::path> folders_; ///< most important first
    std::vector<std::filesystem::path> path_;
    std::string locale_;
};

} // namespace lumnara
