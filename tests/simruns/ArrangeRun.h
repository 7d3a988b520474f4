#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace lumnara::testing {

enum class ArrangeWork { reorder, remove, create };

/// How a run ended.
struct ArrangeRunEnd {
    /// "done", or the sentence of what ended it early.
    std::string ending;
    /// What happened to it, in words; empty when nothing did.
    std::set<std::string> befallen;
    /// What has to hold behind every run, and did not.
    std::vector<std::string> broken;
};

/// What came of many runs.
struct ArrangeTally {
    int runs = 0;
    int broken = 0;
    /// By mishap, how often each ending came with it; runs without one are under "nothing".
    std::map<std::string, std::map<std::string, int>> endings;

    void add(const ArrangeRunEnd& end);
};

/// A simulated Mac, its user, its faults and a piece of work on its desktops, all from one seed: what goes
/// wrong does so at random moments, and what holds behind the work is checked against what the Mac shows.
ArrangeRunEnd playArrangeRun(ArrangeWork work, std::uint64_t seed);

} // namespace lumnara::testing
