#include "core/platform/x11/DesktopMemoryFile.h"

#include "core/base/Files.h"
#include "core/base/Log.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

nlohmann::json encoded(const RememberedDesktop& desktop) {
    nlohmann::json entry{{"uuid", desktop.uuid}, {"shown", desktop.shown}};
    if (desktop.renamed) entry["renamed"] = {{"ours", desktop.renamed->ours}, {"own", desktop.renamed->own}};
    return entry;
}

/// Throws nlohmann::json::exception for an entry of another form.
RememberedDesktop decoded(const nlohmann::json& entry) {
    RememberedDesktop desktop{entry.at("uuid").get<std::string>(), entry.at("shown").get<std::string>()};
    if (const auto renamed = entry.find("renamed"); renamed != entry.end())
        desktop.renamed = {renamed->at("ours").get<std::string>(), renamed->at("own").get<std::string>()};
    return desktop;
}

} // namespace

std::vector<RememberedDesktop> DesktopMemoryFile::load() const {
    std::error_code ignored;
    if (!std::filesystem::exists(path_, ignored)) return {};
    std::vector<RememberedDesktop> desktops;
    try {
        const auto file = nlohmann::json::parse(readFile(path_));
        for (const auto& entry : file.at("desktops")) desktops.push_back(decoded(entry));
    } catch (const nlohmann::json::exception&) {
        log(fmt::format("Lumnara desktops: {} can't be decoded and is moved aside", path_.string()));
        std::filesystem::rename(path_, path_.string() + ".corrupt", ignored);
        return {};
    } catch (const std::system_error& error) {
        log(fmt::format("Lumnara desktops: {}", error.what()));
    }
    return desktops;
}

void DesktopMemoryFile::save(const std::vector<RememberedDesktop>& desktops) const {
    auto list = nlohmann::json::array();
    for (const auto& desktop : desktops) list.push_back(encoded(desktop));
    const nlohmann::json file{{"schemaVersion", 1}, {"desktops", std::move(list)}};
    try {
        // A window manager's own name may be no UTF-8.
        replaceFile(path_, file.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
    } catch (const std::system_error& error) {
        log(fmt::format("Lumnara desktops: {}", error.what()));
    }
}

} // namespace lumnara
