#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace lumnara::testing {

/// What became of one store in all the kills.
struct KillTally {
    std::string store;
    int kills = 0;
    /// Promises that had been made when it was killed, and had to be kept.
    int promises = 0;
    /// Kills in the midst of a change or in a delay.
    int interrupted = 0;
    int lost = 0;
};

struct KillReport {
    std::vector<KillTally> stores;
    int kills = 0;
    /// Kills that cost any store anything, with what it was.
    int killsLost = 0;
    std::vector<std::string> losses;
};

/// Starts, as often as told, a process that changes all stores at once and tells what is safe, kills it at a
/// moment that the seed chooses, and looks at what is on disk. The next process goes on from there; now and
/// then one begins anew.
KillReport runKills(int kills, unsigned seed);

/// Kills a process at a start and a change of each store that writes on its own thread, before each
/// `stride`-th of its system calls in turn; what is then on disk has to be the state before or the one
/// behind.
KillReport runKillsAtCalls(int stride);

} // namespace lumnara::testing
