#pragma once

#include "core/names/DesktopRecord.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// The contents of desktops.json.
struct NameStoreFile {
    static constexpr int currentSchema = 2;

    template <class Value> using Map = std::map<std::string, Value, std::less<>>;

    int schemaVersion = currentSchema;
    /// The moment of the save that wrote the file; a store sets it on the way to disk.
    Date updatedAt;
    /// By desktop key: a Space's stable key or "link:<id>".
    Map<DesktopRecord> desktops;
    /// By display uuid: desktop keys in the user's order. May name desktops that are gone and lack new ones.
    std::optional<Map<std::vector<std::string>>> order;
    /// By link id: the group's space key by display uuid.
    std::optional<Map<Map<std::string>>> links;
    /// Members of the file that this version doesn't know, as the text of a JSON object; empty for none.
    std::string unknownMembers;

    bool operator==(const NameStoreFile&) const = default;

    /// The record of a key, or null. Points into this value.
    const DesktopRecord* record(std::string_view key) const;
    DesktopRecord* record(std::string_view key);

    /// The user's order of a display, found by its uuid in any case, or null. Points into this value.
    const std::vector<std::string>* orderOf(std::string_view displayUuid) const;
    void setOrder(std::string_view displayUuid, std::vector<std::string> keys);

    /// Moves the record at `oldKey`, if any, to `newKey`, and the key with it in the display's order. A
    /// record that stands at `newKey` already is not replaced: then nothing happens.
    void rekey(std::string_view oldKey, const std::string& newKey, std::string_view displayUuid);
};

} // namespace lumnara
