#include "core/names/NameStoreCodec.h"

#include "core/base/StrictJson.h"
#include "core/names/NameStoreError.h"
#include "core/text/Utf8.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

using nlohmann::json;

constexpr std::array<std::string_view, 7> recordMembers = {"aliases",  "color",    "createdAt", "icon",
                                                           "isDimmed", "lastSeen", "name"};
constexpr std::array<std::string_view, 5> fileMembers = {"desktops", "links", "order", "schemaVersion",
                                                         "updatedAt"};

/// Brings an older file to the present schema. Schema 1 differs only in its number: everything that 2 added
/// is optional.
class NameStoreMigrator {
public:
    static void migrate(json& root) {
        if (!root.is_object()) throw NameStoreError::unsupportedSchema(-1);
        const json* version = StrictJson::find(root, "schemaVersion");
        if (version && version->is_number_integer()) {
            const auto number = StrictJson::integer(*version);
            if (number != 1 && number != NameStoreFile::currentSchema)
                throw NameStoreError::unsupportedSchema(number);
        }
        root["schemaVersion"] = NameStoreFile::currentSchema;
    }
};

template <std::size_t size>
std::string unknownMembersOf(const json& object, const std::array<std::string_view, size>& known) {
    json unknown = json::object();
    for (const auto& [key, value] : object.items())
        if (std::find(known.begin(), known.end(), key) == known.end()) unknown[key] = value;
    return unknown.empty() ? std::string() : unknown.dump();
}

Date decodeDate(const json& value) {
    const auto date = Date::fromISO8601(StrictJson::text(value));
    // An offset can carry a date out of the years that its text form can hold.
    if (!date || !Date::fromISO8601(date->iso8601())) throw JsonError("no ISO 8601 date");
    return *date;
}

std::vector<std::string> decodeTexts(const json& value) {
    std::vector<std::string> texts;
    for (const json& element : StrictJson::array(value)) texts.push_back(StrictJson::text(element));
    return texts;
}

LastSeen decodeLastSeen(const json& value) {
    LastSeen seen;
    seen.displayUUID = StrictJson::text(StrictJson::member(value, "displayUUID"));
    if (const json* name = StrictJson::find(value, "displayName")) seen.displayName = StrictJson::text(*name);
    seen.indexOnDisplay = StrictJson::integer<int>(StrictJson::member(value, "indexOnDisplay"));
    seen.at = decodeDate(StrictJson::member(value, "at"));
    if (const json* count = StrictJson::find(value, "spaceCount"))
        seen.spaceCount = StrictJson::integer<int>(*count);
    return seen;
}

DesktopRecord decodeRecord(const json& value, Date now) {
    DesktopRecord record;
    record.name = StrictJson::text(StrictJson::member(value, "name"));
    if (const json* aliases = StrictJson::find(value, "aliases")) record.aliases = decodeTexts(*aliases);
    if (const json* icon = StrictJson::find(value, "icon")) record.icon = StrictJson::text(*icon);
    if (const json* color = StrictJson::find(value, "color")) record.color = StrictJson::text(*color);
    if (const json* dimmed = StrictJson::find(value, "isDimmed"))
        record.isDimmed = StrictJson::boolean(*dimmed);
    const json* created = StrictJson::find(value, "createdAt");
    record.createdAt = created ? decodeDate(*created) : now;
    if (const json* seen = StrictJson::find(value, "lastSeen")) record.lastSeen = decodeLastSeen(*seen);
    record.unknownMembers = unknownMembersOf(value, recordMembers);
    return record;
}

/// Reads an object as a map, each of its values by `decodeValue`.
template <class Value, class Decode>
NameStoreFile::Map<Value> decodeMap(const json& value, Decode decodeValue) {
    NameStoreFile::Map<Value> map;
    for (const auto& [key, element] : StrictJson::object(value).items())
        map.emplace_hint(map.end(), key, decodeValue(element));
    return map;
}

json withUnknownMembers(const std::string& unknownMembers) {
    return unknownMembers.empty() ? json::object() : json::parse(unknownMembers);
}

json encodeLastSeen(const LastSeen& seen) {
    json value = {{"at", seen.at.iso8601()},
                  {"displayUUID", seen.displayUUID},
                  {"indexOnDisplay", seen.indexOnDisplay}};
    if (seen.displayName) value["displayName"] = *seen.displayName;
    if (seen.spaceCount) value["spaceCount"] = *seen.spaceCount;
    return value;
}

json encodeRecord(const DesktopRecord& record) {
    json value = withUnknownMembers(record.unknownMembers);
    value["aliases"] = record.aliases;
    value["createdAt"] = record.createdAt.iso8601();
    value["isDimmed"] = record.isDimmed;
    value["name"] = record.name;
    if (record.color) value["color"] = *record.color;
    if (record.icon) value["icon"] = *record.icon;
    if (record.lastSeen) value["lastSeen"] = encodeLastSeen(*record.lastSeen);
    return value;
}

} // namespace

std::string NameStoreCodec::encode(const NameStoreFile& file) {
    json root = withUnknownMembers(file.unknownMembers);
    json& desktops = root["desktops"] = json::object();
    // Two keys that differ only in bad bytes must not become one key that stands twice.
    for (const auto& [key, record] : file.desktops) desktops[text::sanitizedUtf8(key)] = encodeRecord(record);
    if (file.links) root["links"] = *file.links;
    if (file.order) root["order"] = *file.order;
    root["schemaVersion"] = file.schemaVersion;
    root["updatedAt"] = file.updatedAt.iso8601();
    return root.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

NameStoreFile NameStoreCodec::decode(std::string_view text, Date now,
                                     const std::function<void(const std::string&)>& onDoubledKey) {
    json root = StrictJson::parse(text, onDoubledKey);
    NameStoreMigrator::migrate(root);

    NameStoreFile file;
    file.schemaVersion = StrictJson::integer<int>(StrictJson::member(root, "schemaVersion"));
    file.updatedAt = decodeDate(StrictJson::member(root, "updatedAt"));
    file.desktops = decodeMap<DesktopRecord>(StrictJson::member(root, "desktops"),
                                             [&](const json& value) { return decodeRecord(value, now); });
    if (const json* order = StrictJson::find(root, "order"))
        file.order = decodeMap<std::vector<std::string>>(*order, decodeTexts);
    if (const json* links = StrictJson::find(root, "links"))
        file.links = decodeMap<NameStoreFile::Map<std::string>>(
            *links, [](const json& members) { return decodeMap<std::string>(members, StrictJson::text); });
    file.unknownMembers = unknownMembersOf(root, fileMembers);
    return file;
}

} // namespace lumnara
