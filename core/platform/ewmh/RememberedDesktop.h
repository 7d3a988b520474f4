#pragma once

#include "core/model/SpaceSnapshot.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// What is known of one desktop of an EWMH window manager beyond its place: who it is, and by which names
/// it can be told again when nothing but names is left.
struct RememberedDesktop {
    /// The user's name while it stands in place of the window manager's own.
    struct Renamed {
        std::string ours;
        std::string own;
        bool operator==(const Renamed&) const = default;
    };

    std::string uuid;
    /// The name that the window manager showed last; empty for none.
    std::string shown;
    std::optional<Renamed> renamed = std::nullopt;

    bool operator==(const RememberedDesktop&) const = default;
};

using UuidMint = std::function<std::string()>;

/// The lists of texts in properties: each text is ended by a NUL, the last one perhaps not.
std::vector<std::string> splitNulList(std::string_view bytes);
std::string joinNulList(const std::vector<std::string>& texts);

/// The uuids for `count` desktops out of a list that may be too short or spoilt: empty and repeated ones
/// are minted anew. A longer list keeps its tail, which belongs to desktops that were taken away: a window
/// manager that starts passes through lower counts, and gives back the names of such desktops too.
std::vector<std::string> completedUuids(std::vector<std::string> uuids, std::size_t count,
                                        const UuidMint& mint);

/// The uuids for desktops with these names in a fresh session: a desktop is the remembered one of its
/// place and name, else the first of its name, else the one of its place, else a new one. What was
/// remembered beyond the last desktop stays as the tail.
std::vector<std::string> recalledUuids(const std::vector<RememberedDesktop>& remembered,
                                       const std::vector<std::string>& names, const UuidMint& mint);

/// The ids for desktops of these uuids: not zero, distinct, and the same for the same list.
std::vector<SpaceID> spaceIDsOf(const std::vector<std::string>& uuids);

/// The list of names to show instead of `shown`, which may be longer or shorter than `count`: the wanted
/// name (by uuid) where there is one, the window manager's own where a wanted name was withdrawn, and
/// every other name as it is. Notes in `desktops`, of which the first `count` are looked at, which names
/// now stand in place of others.
std::vector<std::string> namesToShow(const std::vector<std::string>& shown, std::size_t count,
                                     const std::map<std::string, std::string>& wanted,
                                     std::vector<RememberedDesktop>& desktops);

} // namespace lumnara
