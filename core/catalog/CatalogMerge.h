#pragma once

#include "core/catalog/Desktop.h"
#include "core/model/SpaceSnapshot.h"
#include "core/names/NameStoreFile.h"

#include <optional>
#include <string>
#include <vector>

/// How the catalog makes its model from a reading and the stored records. Pure functions.
namespace lumnara::CatalogMerge {

/// A snapshot with what the merge asks of it again and again, made once: the names of its displays and the
/// keys of its Spaces. The snapshot must stand for as long as this does.
struct Reading {
    Reading(const SpaceSnapshot& snapshot, std::vector<std::string> displayNames);

    const SpaceSnapshot& snapshot;
    /// By display.
    std::vector<std::string> displayNames;
    /// By display and by place in its list: the stable key, if the Space has one.
    std::vector<std::vector<std::optional<std::string>>> stableKeys;

    /// The stable key, or "unkeyed:<raw id>".
    std::string spaceKey(std::size_t display, std::size_t place) const;
};

/// A record to be moved to the key that its desktop has now.
struct Reattachment {
    std::string oldKey;
    std::string newKey;
    std::string displayUuid;
    /// The log line that tells of it.
    std::string line;

    bool operator==(const Reattachment&) const = default;
};

/// The records whose Space has another uuid now: no Space has their key, and the display on which they were
/// last seen has as many Spaces as then, so that the one at their place must be theirs.
std::vector<Reattachment> reattachments(const Reading& reading, const NameStoreFile& file);

/// Where the desktops stand that have a record of their own and were last seen elsewhere.
NameStoreFile::Map<LastSeen> places(const Reading& reading, const NameStoreFile& file, Date now);

/// The desktops of each display in the user's order, numbered.
std::vector<DisplayDesktops> displays(const Reading& reading, const NameStoreFile& file);

/// The records, but for those of link groups, that none of the displays' desktops has; sorted by name.
std::vector<Orphan> orphans(const std::vector<DisplayDesktops>& displays, const NameStoreFile& file);

} // namespace lumnara::CatalogMerge
