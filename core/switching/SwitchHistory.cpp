#include "core/switching/SwitchHistory.h"

#include "core/base/StrictJson.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace lumnara {

void SwitchHistory::record(const std::string& key, const std::string& display) {
    std::vector<std::string>& keys = perDisplay[display];
    if (!keys.empty() && keys.back() == key) return;
    keys.push_back(key);
    const auto limit = static_cast<std::size_t>(std::max(capacity, 0));
    if (keys.size() > limit) keys.erase(keys.begin(), keys.end() - static_cast<std::ptrdiff_t>(limit));
}

std::optional<std::string> SwitchHistory::previous(const std::string& display) const {
    const auto found = perDisplay.find(display);
    if (found == perDisplay.end() || found->second.size() < 2) return std::nullopt;
    return found->second[found->second.size() - 2];
}

std::optional<std::string> SwitchHistory::current(const std::string& display) const {
    const auto found = perDisplay.find(display);
    if (found == perDisplay.end() || found->second.empty()) return std::nullopt;
    return found->second.back();
}

std::vector<std::string> SwitchHistory::entries(const std::string& display) const {
    const auto found = perDisplay.find(display);
    return found == perDisplay.end() ? std::vector<std::string>() : found->second;
}

void SwitchHistory::clear(const std::string& display) { perDisplay.erase(display); }

std::string SwitchHistory::toJson() const {
    return nlohmann::json{{"capacity", capacity}, {"perDisplay", perDisplay}}.dump();
}

SwitchHistory SwitchHistory::fromJson(std::string_view json) {
    const StrictJson::Value value = StrictJson::parse(json);
    SwitchHistory history;
    history.capacity = StrictJson::integer<int>(StrictJson::member(value, "capacity"));
    for (const auto& [display, keys] : StrictJson::object(StrictJson::member(value, "perDisplay")).items()) {
        std::vector<std::string>& list = history.perDisplay[display];
        for (const auto& key : StrictJson::array(keys)) list.push_back(StrictJson::text(key));
    }
    return history;
}

} // namespace lumnara
