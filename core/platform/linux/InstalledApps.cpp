#include "core/platform/linux/InstalledApps.h"

#include "core/base/Files.h"
#include "core/platform/linux/XdgFolders.h"
#include "core/text/Text.h"

#include <algorithm>
#include <array>
#include <set>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

struct KnownApp {
    std::string_view bundleID;
    std::string_view id; ///< of its desktop file, or of the app that stands for it on Linux
};

/// Bundle ids of the Mac, as presets and files brought from there have them; the first installed one counts.
constexpr std::array<KnownApp, 22> knownApps = {{
    {"us.zoom.xos", "Zoom"},
    {"us.zoom.xos", "us.zoom.Zoom"},
    {"com.apple.Notes", "org.gnome.Notes"},
    {"com.apple.Notes", "org.gnome.Gnote"},
    {"com.apple.Notes", "org.kde.knotes"},
    {"com.apple.finder", "org.gnome.Nautilus"},
    {"com.apple.finder", "org.kde.dolphin"},
    {"com.apple.finder", "thunar"},
    {"com.apple.finder", "pcmanfm"},
    {"com.apple.Terminal", "org.gnome.Terminal"},
    {"com.apple.Terminal", "org.kde.konsole"},
    {"com.apple.Terminal", "foot"},
    {"com.apple.Terminal", "debian-xterm"},
    {"com.apple.calculator", "org.gnome.Calculator"},
    {"com.apple.calculator", "org.kde.kcalc"},
    {"com.google.Chrome", "google-chrome"},
    {"org.mozilla.firefox", "firefox"},
    {"org.mozilla.firefox", "firefox-esr"},
    {"org.mozilla.thunderbird", "thunderbird"},
    {"com.microsoft.VSCode", "code"},
    {"com.tinyspeck.slackmacgap", "slack"},
    {"com.spotify.client", "spotify"},
}};

std::vector<fs::path> splitFolders(std::string_view list) {
    std::vector<fs::path> folders;
    while (!list.empty()) {
        const auto end = list.find(':');
        const fs::path folder = list.substr(0, end);
        if (folder.is_absolute()) folders.push_back(folder);
        list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
    }
    return folders;
}

bool isProgram(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) && ::access(path.c_str(), X_OK) == 0;
}

/// "kde-konsole" for "kde/konsole.desktop".
std::string idOf(const fs::path& relative) {
    std::string id = relative.string();
    std::replace(id.begin(), id.end(), '/', '-');
    id.resize(id.size() - std::string_view(".desktop").size());
    return id;
}

} // namespace

InstalledApps::InstalledApps(const Environment& environment) {
    const fs::path own = environment.get("XDG_DATA_HOME").value_or("");
    folders_ = {own.is_absolute() ? own : XdgFolders::home(environment) / ".local/share"};
    for (const fs::path& folder :
         splitFolders(environment.get("XDG_DATA_DIRS").value_or("/usr/local/share:/usr/share")))
        folders_.push_back(folder);
    for (fs::path& folder : folders_) folder /= "applications";
    path_ = splitFolders(environment.get("PATH").value_or("/usr/local/bin:/usr/bin:/bin"));
    for (const char* variable : {"LANG", "LC_MESSAGES", "LC_ALL"}) // the last one that is set counts
        locale_ = environment.get(variable).value_or(locale_);
}

std::optional<InstalledApp> InstalledApps::find(std::string_view bundleID) const {
    if (bundleID.ends_with(".desktop")) bundleID.remove_suffix(std::string_view(".desktop").size());
    if (bundleID.empty()) return std::nullopt;
    std::vector<std::string_view> names = {bundleID};
    for (const KnownApp& known : knownApps)
        if (known.bundleID == bundleID) names.push_back(known.id);

    const std::vector<File> files = desktopFiles();
    for (const std::string_view name : names)
        for (const File& file : files)
            if (text::equalsIgnoringCase(file.id, name))
                if (auto app = read(file)) return app;
    for (const File& file : files)
        if (auto app = read(file); app && text::equalsIgnoringCase(app->entry.startupWMClass, bundleID))
            return app;
    return std::nullopt;
}

std::optional<fs::path> InstalledApps::program(std::string_view name) const {
    if (name.starts_with('/')) return isProgram(name) ? std::optional<fs::path>(name) : std::nullopt;
    if (name.empty()) return std::nullopt;
    for (const fs::path& folder : path_)
        if (fs::path candidate = folder / name; isProgram(candidate)) return candidate;
    return std::nullopt;
}

std::vector<InstalledApps::File> InstalledApps::desktopFiles() const {
    std::vector<File> files;
    std::set<std::string> ids;
    for (const fs::path& folder : folders_) {
        std::error_code end; // a folder that can't be read, or no longer, holds nothing
        fs::recursive_directory_iterator entry(folder, fs::directory_options::follow_directory_symlink, end);
        for (; !end && entry != fs::recursive_directory_iterator(); entry.increment(end)) {
            if (entry.depth() > deepestFolder) entry.disable_recursion_pending();
            if (entry->path().extension() != ".desktop") continue;
            std::string id = idOf(entry->path().lexically_relative(folder));
            if (ids.insert(id).second) files.push_back({std::move(id), entry->path()});
        }
    }
    return files;
}

std::optional<InstalledApp> InstalledApps::read(const File& file) const try {
    auto entry = DesktopEntry::parse(readFile(file.path), locale_);
    if (!entry || entry->isHidden || entry->exec.empty()) return std::nullopt;
    if (!entry->tryExec.empty() && !program(entry->tryExec)) return std::nullopt;
    return InstalledApp{file.id, file.path, *std::move(entry)};
} catch (const std::system_error&) { // an entry that can't be read is none
    return std::nullopt;
}

} // namespace lumnara
