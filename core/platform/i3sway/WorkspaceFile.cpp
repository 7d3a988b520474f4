#include "core/platform/i3sway/WorkspaceFile.h"

#include "core/base/Log.h"
#include "core/platform/i3sway/WorkspaceNames.h"

#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>

namespace lumnara {

namespace {

using nlohmann::json;

constexpr int workspaceSchema = 1;

std::string textOf(const json& desktop, const char* name) {
    const json& value = desktop.at(name);
    if (!value.is_string()) throw std::runtime_error(std::string(name) + " is no text");
    return value.get<std::string>();
}

std::vector<std::string> textsOf(const json& desktop, const char* name) {
    std::vector<std::string> texts;
    for (const json& each : desktop.at(name)) {
        if (!each.is_string()) throw std::runtime_error(std::string("no text in ") + name);
        texts.push_back(each.get<std::string>());
    }
    return texts;
}

RegisteredDesktop decodeDesktop(const json& desktop) {
    for (const char* flag : {"kept", "nameOwed"})
        if (!desktop.at(flag).is_boolean())
            throw std::runtime_error(std::string(flag) + " is no truth value");
    if (!desktop.at("lastSeen").is_number_unsigned()) throw std::runtime_error("lastSeen is no count");
    return {.uuid = textOf(desktop, "uuid"),
            .id = {},
            .display = textOf(desktop, "display"),
            .workspace = textOf(desktop, "workspace"),
            .ownName = textOf(desktop, "ownName"),
            .title = textOf(desktop, "title"),
            .kept = desktop.at("kept").get<bool>(),
            .added = desktop.value("added", false), // absent in older files
            .lastSeen = desktop.at("lastSeen").get<std::uint64_t>(),
            .asked = textsOf(desktop, "asked"),
            .nameOwed = desktop.at("nameOwed").get<bool>()};
}

std::vector<RegisteredDesktop> decode(const std::string& contents) {
    const json root = json::parse(contents);
    if (root.at("schemaVersion") != json(workspaceSchema)) throw std::runtime_error("another schema");
    std::vector<RegisteredDesktop> desktops;
    std::set<std::string> seen;
    for (const json& each : root.at("desktops")) {
        RegisteredDesktop desktop = decodeDesktop(each);
        const bool first = seen.insert("uuid " + desktop.uuid).second;
        if (desktop.uuid.empty() || desktop.workspace.empty() || !first)
            throw std::runtime_error("no identity");
        // Two can't have one name; the one that is found second gets another when it is needed.
        if (!seen.insert("name " + workspaceKey(desktop.workspace)).second) desktop.nameOwed = true;
        desktops.push_back(std::move(desktop));
    }
    return desktops;
}

} // namespace

std::optional<std::vector<RegisteredDesktop>> loadWorkspaceFile(KeptFile& file, Date now) {
    std::vector<RegisteredDesktop> desktops;
    const auto reading = file.load([&](const std::string& text) { desktops = decode(text); }, now);
    const std::string path = file.path().string();
    if (reading.found == KeptFile::Found::unreadable)
        log("Lumnara workspaces: " + path + " is left as it is: " + reading.failure->what());
    else if (reading.failure)
        log("Lumnara workspaces: " + path + " can't be used nor moved aside: " + reading.failure->what());
    else if (reading.aside)
        log("Lumnara workspaces: moved aside to " + reading.aside->string() + ": " + reading.damage);
    if (reading.failure) return std::nullopt;
    return desktops;
}

std::string encodeWorkspaceFile(const std::vector<RegisteredDesktop>& desktops) {
    json list = json::array();
    for (const RegisteredDesktop& desktop : desktops) {
        list.push_back({{"uuid", desktop.uuid},
                        {"display", desktop.display},
                        {"workspace", desktop.workspace},
                        {"ownName", desktop.ownName},
                        {"title", desktop.title},
                        {"kept", desktop.kept},
                        {"added", desktop.added},
                        {"lastSeen", desktop.lastSeen},
                        {"asked", desktop.asked},
                        {"nameOwed", desktop.nameOwed}});
    }
    const json root = {{"schemaVersion", workspaceSchema}, {"desktops", std::move(list)}};
    return root.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

} // namespace lumnara
