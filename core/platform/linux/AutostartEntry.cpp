#include "core/platform/linux/AutostartEntry.h"

#include "core/base/Files.h"
#include "core/platform/linux/DesktopEntry.h"

#include <fmt/format.h>
#include <string_view>
#include <system_error>
#include <utility>

namespace lumnara {

namespace {

/// A program's path as the value of Exec: quoted as an argument, where "%" would begin a field code, and
/// then escaped as every value of a desktop file.
std::string execValue(std::string_view program) {
    std::string argument = "\"";
    for (const char c : program) {
        if (c == '%') argument += '%';
        if (std::string_view("\"`$\\").find(c) != std::string_view::npos) argument += '\\';
        argument += c;
    }
    argument += '"';

    std::string value;
    for (const char c : argument) {
        if (c == '\\')
            value += "\\\\";
        else if (c == '\n')
            value += "\\n";
        else if (c == '\t')
            value += "\\t";
        else if (c == '\r')
            value += "\\r";
        else
            value += c;
    }
    return value;
}

/// Whether the entry's main group says that it isn't to be started.
bool isSwitchedOff(std::string_view entry) {
    const auto keys = desktopFileKeys(entry).value_or(DesktopFileKeys());
    const auto says = [&](const char* key, std::string_view value) {
        const auto found = keys.find(key);
        return found != keys.end() && found->second == value;
    };
    return says("Hidden", "true") || says("X-GNOME-Autostart-enabled", "false");
}

} // namespace

AutostartEntry::AutostartEntry(std::filesystem::path file, std::filesystem::path program)
    : file_(std::move(file)),
      program_(std::move(program)) {}

bool AutostartEntry::isRegistered() const {
    try {
        return !isSwitchedOff(readFile(file_));
    } catch (const std::system_error&) { // what can't be read, the session can't start either
        return false;
    }
}

void AutostartEntry::setRegistered(bool registered) {
    if (!registered) {
        std::filesystem::remove(file_);
        return;
    }
    replaceFile(file_, fmt::format("[Desktop Entry]\n"
                                   "Type=Application\n"
                                   "Name=Lumnara\n"
                                   "Comment=Named desktops\n"
                                   "Exec={}\n"
                                   "Terminal=false\n",
                                   execValue(program_.string())));
}

} // namespace lumnara
