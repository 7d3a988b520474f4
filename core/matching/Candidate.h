#pragma once

#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// A desktop as the matcher sees it.
struct Candidate {
    /// The stable key of the desktop.
    std::string desktopKey;
    DisplayID display;
    int indexOnDisplay = 0;
    /// The number by which the user calls it.
    std::optional<int> userNumber;
    /// The texts that stand for it, as the user wrote them.
    std::vector<std::string> phrases;

    bool operator==(const Candidate&) const = default;
};

/// A candidate and how well it fits, from 0 to 1.
struct ScoredCandidate {
    Candidate candidate;
    double score = 0;

    bool operator==(const ScoredCandidate&) const = default;
};

} // namespace lumnara
