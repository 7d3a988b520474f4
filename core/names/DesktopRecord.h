#pragma once

#include "core/base/Date.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Where a desktop was last seen, by which it is found again when its key has changed.
struct LastSeen {
    std::string displayUUID;
    /// The display's human name at that time.
    std::optional<std::string> displayName;
    /// Zero-based.
    int indexOnDisplay = 0;
    Date at;
    /// The number of Spaces that the display had then.
    std::optional<int> spaceCount;

    bool operator==(const LastSeen&) const = default;

    /// Whether both tell of one place in a display of the same size; the moment and the display's name
    /// don't count.
    bool samePlace(const LastSeen& other) const {
        return displayUUID == other.displayUUID && indexOnDisplay == other.indexOnDisplay &&
               spaceCount == other.spaceCount;
    }
};

/// What the user has said about one desktop.
struct DesktopRecord {
    /// May be empty: a record may stand only for its icon or colour.
    std::string name;
    std::vector<std::string> aliases;
    /// The name of a symbol.
    std::optional<std::string> icon;
    /// The name of a colour.
    std::optional<std::string> color;
    bool isDimmed = false;
    Date createdAt;
    std::optional<LastSeen> lastSeen;
    /// Members of the file that this version doesn't know, as the text of a JSON object; empty for none.
    /// They are written back as they were.
    std::string unknownMembers;

    bool operator==(const DesktopRecord&) const = default;
};

} // namespace lumnara
