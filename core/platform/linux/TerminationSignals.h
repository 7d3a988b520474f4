#pragma once

#include "core/async/Loop.h"

#include <functional>
#include <memory>

namespace lumnara {

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the main loop, so that a program told to end can save
/// first. One object a process. A second signal ends the process at once.
class TerminationSignals {
public:
    /// Throws std::system_error.
    TerminationSignals(async::Loop& loop, std::function<void()> onTerminate);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    /// Restores the signals' default action.
    ~TerminationSignals();

private:
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace lumnara
