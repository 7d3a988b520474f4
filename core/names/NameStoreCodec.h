#pragma once

#include "core/names/NameStoreFile.h"

#include <functional>
#include <string>
#include <string_view>

namespace lumnara {

/// desktops.json as text: UTF-8 JSON with sorted keys, dates as ISO 8601 in whole seconds, absent optionals
/// left out.
class NameStoreCodec {
public:
    /// Bytes that are no UTF-8 become U+FFFD, so that one bad text can't keep the rest from being saved.
    static std::string encode(const NameStoreFile& file);

    /// Reads a file of schema 1 or 2; a record without `createdAt` gets `now`. Of a key that stands twice in
    /// one object the last value counts, and `onDoubledKey` is told. Throws for any damage: bad JSON, a
    /// missing field, a field of another type or out of range, another schema
    /// (NameStoreError::unsupportedSchema).
    static NameStoreFile decode(
        std::string_view text, Date now,
        const std::function<void(const std::string&)>& onDoubledKey = [](const std::string&) {});
};

} // namespace lumnara
