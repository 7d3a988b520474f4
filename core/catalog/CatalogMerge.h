#pragma once

#include "core/catalog/Desktop.h"
#include "core/model/SpaceSnapshot.h"
#include "core/names/NameStoreFile.h"

#include <optional>
#include <string>
#include <unordered_map>
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
    /// The uuid of its display by the key of each Space.
    std::unordered_map<std::string, std::string> displaysOfSpaces() const;
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

/// By Space key: the "link:" key under which the record of a linked desktop stands.
using LinkKeys = std::unordered_map<std::string, std::string>;

/// The link groups of the file as they apply to the reading; none under a shared arrangement. When Spaces of
/// one group have come together on a display, one of them bears the group's key: the one that the group has
/// for that display, if it is among them. No key stands twice on a display that way.
LinkKeys linkKeys(const Reading& reading, const NameStoreFile& file);

/// Where the desktops stand that have a record of their own and were last seen elsewhere. A linked desktop
/// isn't tied to one place.
NameStoreFile::Map<LastSeen> places(const Reading& reading, const NameStoreFile& file, const LinkKeys& links,
                                    Date now);

/// The desktops of each display in the user's order, numbered.
std::vector<DisplayDesktops> displays(const Reading& reading, const NameStoreFile& file,
                                      const LinkKeys& links);

/// How many link groups hold two or more desktops together.
int activeLinkCount(const LinkKeys& links);

/// The records whose Space isn't there, but for those of link groups; sorted by name. The own record of a
/// linked desktop waits for the end of the link and is none.
std::vector<Orphan> orphans(const std::vector<DisplayDesktops>& displays, const NameStoreFile& file);

} // namespace lumnara::CatalogMerge
