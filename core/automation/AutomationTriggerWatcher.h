#pragma once

#include "core/async/TaskHandle.h"
#include "core/automation/AutomationRunner.h"

#include <map>
#include <string>

namespace lumnara {

/// Turns changes of the current desktops into runs of the automations of the desktops left and entered. A
/// desktop that shows for less than the debounce fires nothing. Main thread; the loop and the runner outlive
/// it.
class AutomationTriggerWatcher {
public:
    /// Space keys by display uuid; a link group stands once, under "linked".
    using Keys = std::map<std::string, std::string>;

    AutomationTriggerWatcher(async::Loop& loop, AutomationRunner& runner) : loop_(loop), runner_(runner) {}

    double debounce = 0.3; ///< seconds
    /// While false, changes are taken note of and fire nothing, then or later.
    bool isEnabled = true;

    /// To be called with the current desktops on every change. The first call only seeds. A further change
    /// cancels the runs of the one before, and the action under way with them.
    void update(Keys keys);
    /// Cancels what is pending; the next update seeds again.
    void reset();

    /// What the last handled change saw.
    const Keys& settledKeys() const { return settledKeys_; }
    /// The most recent report.
    const Keys& latestKeys() const { return latestKeys_; }
    bool seeded() const { return seeded_; }

private:
    async::Task<> settle(double delay);

    async::Loop& loop_;
    AutomationRunner& runner_;
    Keys settledKeys_;
    Keys latestKeys_;
    bool seeded_ = false;
    async::TaskHandle pending_;
};

} // namespace lumnara
