#include "core/names/LinkPruning.h"

#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>

namespace lumnara {

namespace {

/// The Space keys of the members that stand on displays of their own, those at home before those that have
/// been moved.
std::vector<std::string> standingMembers(const DisplayLink::Members& members,
                                         const LinkPruning::LiveKeys& liveKeys) {
    std::vector<std::string> standing;
    std::vector<std::string_view> taken;
    for (const bool atHome : {true, false}) {
        for (const auto& [home, spaceKey] : members) {
            const auto live = liveKeys.find(spaceKey);
            if (live == liveKeys.end() || text::equalsIgnoringCase(live->second, home) != atHome) continue;
            const auto isThere = [&](std::string_view display) {
                return text::equalsIgnoringCase(display, live->second);
            };
            if (std::ranges::any_of(taken, isThere)) continue;
            taken.push_back(live->second);
            standing.push_back(spaceKey);
        }
    }
    return standing;
}

} // namespace

LinkPruning LinkPruning::of(const NameStoreFile::Map<DisplayLink::Members>& links, const LiveKeys& liveKeys,
                            const MissingSince& missingBefore, Date now) {
    LinkPruning pruning;
    for (const auto& [id, members] : links) {
        const std::vector<std::string> standing = standingMembers(members, liveKeys);
        DisplayLink::Members left;
        std::vector<std::string> lost;
        for (const auto& member : members) {
            const auto& [displayUuid, spaceKey] = member;
            if (std::ranges::find(standing, spaceKey) == standing.end()) {
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
