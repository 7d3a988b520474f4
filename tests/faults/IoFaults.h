#pragma once

#include "tests/support/FileCalls.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace lumnara::testing {

struct FaultTally {
    int faults = 0;
    int lost = 0;
    /// Those that the store told of; the others it could do without.
    int told = 0;
};

struct FaultReport {
    /// By store and kind of call.
    std::map<std::pair<std::string, CallKind>, FaultTally> tallies;
    int faults = 0;
    int lost = 0;
    std::vector<std::string> losses;
};

/// In each store makes each file call of a start and of a save fail in turn, once and for as long as the
/// save lasts, and looks whether everything is still there, whether it was told and whether the store then
/// goes on. Thorough, each call fails with ENOSPC, EIO and EACCES; otherwise with one of them.
FaultReport runIoFaults(bool isThorough);

} // namespace lumnara::testing
