#include "core/automation/AutomationTriggerWatcher.h"

#include "core/async/Task.h"

#include <utility>

namespace lumnara {

void AutomationTriggerWatcher::update(Keys keys) {
    latestKeys_ = std::move(keys);
    if (!isEnabled) {
        settledKeys_ = latestKeys_;
        return;
    }
    if (!seeded_) {
        settledKeys_ = latestKeys_;
        seeded_ = true;
        return;
    }
    if (latestKeys_ == settledKeys_) return; // what is pending will find nothing to do
    pending_ = async::spawn(loop_, settle(debounce));
}

void AutomationTriggerWatcher::reset() {
    pending_.cancel();
    seeded_ = false;
    settledKeys_.clear();
    latestKeys_.clear();
}

async::Task<> AutomationTriggerWatcher::settle(double delay) {
    co_await async::sleepFor(delay);
    // By the end of a run the watcher may be gone; the runner is not.
    AutomationRunner& runner = runner_;
    const Keys now = latestKeys_;
    const Keys before = std::exchange(settledKeys_, now);
    for (const auto& [display, key] : now) {
        const auto left = before.find(display);
        if (left != before.end() && left->second == key) continue;
        if (left != before.end()) co_await runner.runAll(left->second, AutomationTrigger::onExit);
        co_await runner.runAll(key, AutomationTrigger::onEnter);
    }
}

} // namespace lumnara
