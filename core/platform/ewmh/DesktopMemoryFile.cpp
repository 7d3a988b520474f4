#include "core/platform/ewmh/DesktopMemoryFile.h"

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

} // namespace

std::vector<RememberedDesktop> DesktopMemoryFile::load(Date now) {
    std::vector<RememberedDesktop> desktops;
    const auto reading = file_.load([&](const std::string& text) { desktops = decodedList(text); }, now);
    isLeftAlone_ = reading.failure.has_value();
    if (reading.failure)
        log(fmt::format("Lumnara desktops: {}", reading.failure->what()));
    else if (reading.aside)
        log(fmt::format("Lumnara desktops: {} can't be decoded and was moved to {}", file_.path().string(),
                        reading.aside->string()));
    return desktops;
}

void DesktopMemoryFile::save(const std::vector<RememberedDesktop>& desktops) {
    if (isLeftAlone_) return;
    auto list = nlohmann::json::array();
    for (const auto& desktop : desktops) list.push_back(encoded(desktop));
    const nlohmann::json file{{"schemaVersion", 1}, {"desktops", std::move(list)}};
    try {
        // A window manager's own name may be no UTF-8.
        file_.replace(file.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
    } catch (const std::system_error& error) {
        log(fmt::format("Lumnara desktops: {}", error.what()));
    }
}

} // namespace lumnara
