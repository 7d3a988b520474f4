#pragma once

#include "core/async/TestLoop.h"
#include "core/platform/mac/missioncontrol/MissionControlArranger.h"
#include "core/platform/sim/SimulatedMac.h"
#include "tests/simruns/DamagedAccessibility.h"
#include "tests/simruns/WatchedDriver.h"
#include "tests/simruns/WatchedProvider.h"

#include <functional>

namespace lumnara::testing {

/// A furnished simulated Mac, and everything that arranges its desktops.
class ArrangeStage {
public:
    /// All that is left open follows from `random`.
    ArrangeStage(SimulatedRandom& random, std::uint64_t seed);
    /// Two screens of so many desktops each; `prepare` is called before anything is looked up.
    explicit ArrangeStage(int desktops, SimulatedMacOptions options = {},
                          const std::function<void(SimulatedMac&)>& prepare = {});

    /// Whether the bar that was read last is the one a script of so many Spaces expects.
    bool showsBar(std::size_t count) const;
    bool showsExpandedBar(std::size_t count) const;

    bool isWithoutSymbol = false;
    async::TestLoop loop;
    SimulatedMac mac;
    MacSeams seams;
    DamagedAccessibility accessibility{*seams.accessibility};
    WatchedDriver driver{loop,
                         {accessibility, *seams.eventServices, *seams.preferences, *seams.screens,
                          *seams.session, *seams.windowServer, *seams.workspace}};
    WatchedProvider provider{loop, *seams.windowServer, *seams.screens, seams.workspace.get()};
    MissionControlArranger arranger{driver, driver, provider};
    /// Where the work is done.
    DisplayID display;

private:
    static SimulatedMacOptions optionsFrom(SimulatedRandom& random, std::uint64_t seed);
    MacSeams furnished(SimulatedRandom& random);
    void furnish(SimulatedRandom& random);
};

} // namespace lumnara::testing
