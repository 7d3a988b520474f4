#include "core/platform/ewmh/DesktopMemoryFile.h"

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

/// Throws nlohmann::json::exception for text of another form.
std::vector<RememberedDesktop> decodedList(const std::string& text) {
    std::vector<RememberedDesktop> desktops;
    const auto file = nlohmann::json::parse(text);
    for (const auto& entry : file.at("desktops")) desktops.push_back(decoded(entry));
    return desktops;
}

/// False when it could not be moved.
bool moveDamagedAside(const std::filesystem::path& path, Date now) {
    try {
        const auto kept = moveAside(path, now);
        log(fmt::format("Lumnara desktops: {} can't be decoded and was moved to {}", path.string(),
                        kept.string()));
        return true;
    } catch (const std::system_error& error) {
        log(fmt::format("Lumnara desktops: {}", error.what()));
        return false;
    }
}

} // namespace

std::vector<RememberedDesktop> DesktopMemoryFile::load(Date now) {
    finishReplacement(path_);
    isLeftAlone_ = false;
    try {
        if (!std::filesystem::exists(path_)) return {};
        return decodedList(readFile(path_));
    } catch (const nlohmann::json::exception&) {
        isLeftAlone_ = !moveDamagedAside(path_, now);
    } catch (const std::system_error& error) {
        isLeftAlone_ = true;
        log(fmt::format("Lumnara desktops: {}", error.what()));
    }
    return {};
}

void DesktopMemoryFile::save(const std::vector<RememberedDesktop>& desktops) const {
    if (isLeftAlone_) return;
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
