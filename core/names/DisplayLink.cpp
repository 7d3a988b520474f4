#include "core/names/DisplayLink.h"

#include "core/base/Uuid.h"
#include "core/text/Clusters.h"

#include <algorithm>

namespace lumnara::DisplayLink {

namespace {

constexpr std::string_view keyPrefix = "link:";
constexpr std::size_t idLength = 8;

} // namespace

std::optional<std::string_view> id(std::string_view fromKey) {
    if (!fromKey.starts_with(keyPrefix)) return std::nullopt;
    return fromKey.substr(keyPrefix.size());
}

std::string newID() { return newUuid().substr(0, idLength); }

std::string key(std::string_view id) { return std::string(keyPrefix).append(id); }

const Members* members(const NameStoreFile& file, std::string_view id) {
    if (!file.links) return nullptr;
    const auto found = file.links->find(id);
    return found == file.links->end() ? nullptr : &found->second;
}

bool contains(const Members& members, std::string_view spaceKey) {
    return std::any_of(members.begin(), members.end(),
                       [&](const auto& member) { return member.second == spaceKey; });
}

std::optional<std::string_view> groupOf(const NameStoreFile& file, std::string_view spaceKey) {
    if (!file.links) return std::nullopt;
    for (const auto& [id, members] : *file.links)
        if (contains(members, spaceKey)) return id;
    return std::nullopt;
}

std::vector<std::string> ordered(const Members& members, std::string_view last) {
    std::vector<std::string> spaceKeys;
    for (const auto& [displayUuid, spaceKey] : members)
        if (spaceKey != last) spaceKeys.push_back(spaceKey);
    if (contains(members, last)) spaceKeys.emplace_back(last);
    return spaceKeys;
}

bool isGroup(const Members& members) {
    return std::any_of(members.begin(), members.end(),
                       [&](const auto& member) { return member.second != members.begin()->second; });
}

void remove(NameStoreFile& file, std::string_view id) {
    if (!file.links) return;
    const auto found = file.links->find(id);
    if (found == file.links->end()) return;
    file.desktops.erase(key(id));
    file.links->erase(found);
    if (file.links->empty()) file.links.reset();
}

std::string_view brief(std::string_view text) { return text::first(text, 8); }

} // namespace lumnara::DisplayLink
