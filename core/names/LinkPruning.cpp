#include "core/names/LinkPruning.h"

#include <algorithm>
#include <fmt/format.h>

namespace lumnara {

LinkPruning LinkPruning::of(const NameStoreFile::Map<DisplayLink::Members>& links, const LiveKeys& liveKeys,
                            const MissingSince& missingBefore, Date now) {
    LinkPruning pruning;
    for (const auto& [id, members] : links) {
        DisplayLink::Members left;
        std::vector<std::string> lost;
        for (const auto& member : members) {
            const auto& [displayUuid, spaceKey] = member;
            if (!liveKeys.contains(spaceKey)) {
                const auto known = missingBefore.find(spaceKey);
                // A clock that was set back must not keep what is gone.
                const Date since = known == missingBefore.end() ? now : std::min(known->second, now);
                if (since.plusSeconds(graceSeconds) <= now) {
                    lost.push_back(fmt::format("{} on {}", DisplayLink::brief(spaceKey),
                                               DisplayLink::brief(displayUuid)));
                    continue;
                }
                pruning.missingSince.emplace(spaceKey, since);
            }
            left.insert(member);
        }
        if (!lost.empty())
            pruning.lines.push_back(fmt::format("Lumnara link {}: pruned, desktop gone: {} ({} live keys)",
                                                id, fmt::join(lost, ", "), liveKeys.size()));
        if (!lost.empty() || !DisplayLink::isGroup(left)) pruning.changed.emplace_back(id, std::move(left));
    }
    return pruning;
}

} // namespace lumnara
