#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/async/Loop.h"
#include "core/async/TaskHandle.h"
#include "core/platform/sim/SimulatedMac.h"

#include <functional>
#include <string>

namespace lumnara {

/// The jobs that can be watched on a simulated Mac, one at a time, told in a line as they go and end.
class MacJobs {
public:
    /// All outlive the jobs.
    MacJobs(async::Loop& loop, SimulatedMac& mac, DesktopArranger& arranger);

    /// Is told what goes on and what came of it.
    std::function<void(const std::string&)> onStatus;

    /// Brings the Spaces of the display into the opposite order.
    void reverse(const std::string& display);
    /// Removes the last desktop of the display.
    void removeLast(const std::string& display);
    void add(const std::string& display);

private:
    void start(async::Task<std::string> job);
    async::Task<> run(async::Task<std::string> job);
    async::Task<std::string> reverseAll(DisplayID display);
    async::Task<std::string> removeOne(DisplayID display);
    async::Task<std::string> addOne(DisplayID display);

    async::Loop& loop_;
    SimulatedMac& mac_;
    DesktopArranger& arranger_;
    bool isRunning_ = false;
    async::TaskHandle job_;
};

} // namespace lumnara
