#pragma once

#include "core/names/DisplayLink.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace lumnara {

/// What has to become of the link groups when Spaces of theirs are gone.
struct LinkPruning {
    /// For so long a member may be missing: a reading in the midst of a change of displays is incomplete.
    static constexpr double graceSeconds = 5;

    /// The uuid of its display by the key of each live Space.
    using LiveKeys = std::unordered_map<std::string, std::string>;
    /// By Space key: when a member was first found missing. So is one that stands on the display of another
    /// member, as when its own was unplugged.
    using MissingSince = NameStoreFile::Map<Date>;

    /// Groups by id with the members that are left to them; such as are no groups any more have to go.
    std::vector<std::pair<std::string, DisplayLink::Members>> changed;
    /// The members that are missing and still belong to their groups.
    MissingSince missingSince;
    /// The log lines that tell of the losses.
    std::vector<std::string> lines;

    static LinkPruning of(const NameStoreFile::Map<DisplayLink::Members>& links, const LiveKeys& liveKeys,
                          const MissingSince& missingBefore, Date now);
};

} // namespace lumnara
