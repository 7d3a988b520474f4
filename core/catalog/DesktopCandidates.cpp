#include "core/catalog/DesktopCandidates.h"

#include <algorithm>

namespace lumnara {

namespace {

Candidate candidateOf(const Desktop& desktop) {
    Candidate candidate{desktop.key, desktop.display, desktop.space.indexOnDisplay, desktop.userNumber, {}};
    candidate.phrases.push_back(desktop.displayName());
    if (desktop.record) {
        const auto& aliases = desktop.record->aliases;
        candidate.phrases.insert(candidate.phrases.end(), aliases.begin(), aliases.end());
    }
    if (desktop.space.kind == SpaceKind::fullscreen && desktop.space.fullscreenOwner) {
        const std::string& owner = desktop.space.fullscreenOwner->name;
        const auto& phrases = candidate.phrases;
        if (!owner.empty() && std::find(phrases.begin(), phrases.end(), owner) == phrases.end())
            candidate.phrases.push_back(owner);
    }
    return candidate;
}

} // namespace

std::vector<Candidate> candidates(const std::vector<Desktop>& desktops) {
    std::vector<Candidate> made;
    made.reserve(desktops.size());
    for (const Desktop& desktop : desktops) made.push_back(candidateOf(desktop));
    return made;
}

} // namespace lumnara
