#include "core/platform/linux/XdgFolders.h"

#include <pwd.h>
#include <unistd.h>

namespace lumnara {

std::filesystem::path XdgFolders::home(const Environment& environment) {
    if (const auto home = environment.get("HOME")) return *home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

XdgFolders XdgFolders::of(const Environment& environment) {
    const std::filesystem::path home = XdgFolders::home(environment);
    const auto folder = [&](const char* variable, const char* fallback) {
        const std::filesystem::path base = environment.get(variable).value_or("");
        return (base.is_absolute() ? base : home / fallback) / "Lumnara";
    };
    return {.data = folder("XDG_DATA_HOME", ".local/share"),
            .config = folder("XDG_CONFIG_HOME", ".config"),
            .state = folder("XDG_STATE_HOME", ".local/state")};
}

} // namespace lumnara
