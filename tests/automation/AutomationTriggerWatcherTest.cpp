#include "core/automation/AutomationTriggerWatcher.h"
#include "core/async/TestLoop.h"
#include "tests/support/RecordingExecutor.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace lumnara {
namespace {

using Keys = AutomationTriggerWatcher::Keys;
using Lines = std::vector<std::string>;

class AutomationTriggerWatcherTest : public ::testing::Test {
protected:
    AutomationTriggerWatcherTest() {
        for (const char* key : {"a", "b", "c"})
            for (const auto trigger : {AutomationTrigger::onEnter, AutomationTrigger::onExit}) {
                const std::string script =
                    (trigger == AutomationTrigger::onEnter ? "+" : "-") + std::string(key);
                store_.upsert({.id = script,
                               .spaceKey = key,
                               .name = script,
                               .icon = "",
                               .trigger = trigger,
                               .actions = {RunShellAction{script}}});
            }
    }
    /// What was run since the last call.
    Lines taken() { return std::exchange(executor_.calls, {}); }

    testing::TemporaryFolder folder_;
    async::TestLoop loop_;
    AutomationStore store_{loop_, folder_ / "automations.json"};
    testing::RecordingExecutor executor_;
    AutomationRunner runner_{store_, executor_};
    std::unique_ptr<AutomationTriggerWatcher> watcher_ =
        std::make_unique<AutomationTriggerWatcher>(loop_, runner_);
};

TEST_F(AutomationTriggerWatcherTest, OnlyWhatStandsForTheDebounceFires) {
    watcher_->update({{"1", "a"}, {"2", "b"}});
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{}) << "the layout at the start";

    watcher_->update({{"1", "b"}, {"2", "b"}});
    loop_.advance(0.2);
    watcher_->update({{"1", "c"}, {"2", "b"}});
    loop_.advance(0.29);
    EXPECT_EQ(taken(), Lines{});
    loop_.advance(0.02);
    EXPECT_EQ(taken(), (Lines{"-a", "+c"})) << "b was only passed through";

    // There and back: the pending task stays and finds nothing.
    watcher_->update({{"1", "a"}, {"2", "b"}});
    loop_.advance(0.1);
    watcher_->update({{"1", "c"}, {"2", "b"}});
    EXPECT_EQ(loop_.timerCount(), 1u);
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});

    // Displays that go and come; both change at once.
    watcher_->update({{"2", "b"}});
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});
    watcher_->update({{"1", "c"}, {"2", "a"}});
    loop_.advance(1);
    EXPECT_EQ(taken(), (Lines{"+c", "-b", "+a"}));
}

TEST_F(AutomationTriggerWatcherTest, WhatHappensWhileItIsOffFiresNeitherThenNorLater) {
    watcher_->update({{"1", "a"}});
    watcher_->isEnabled = false;
    watcher_->update({{"1", "b"}});
    watcher_->isEnabled = true;
    watcher_->update({{"1", "b"}});
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});

    watcher_->update({{"1", "c"}});
    watcher_->reset();
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});
    watcher_->update({{"1", "a"}}); // seeds again
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});
}

TEST_F(AutomationTriggerWatcherTest, AFurtherChangeCancelsTheActionUnderWay) {
    store_.upsert({.id = "h", .spaceKey = "b", .name = "h", .icon = "", .actions = {RunShellAction{"hang"}}});
    watcher_->update({{"1", "a"}});
    watcher_->update({{"1", "b"}});
    loop_.advance(1);
    EXPECT_EQ(taken(), (Lines{"-a", "+b", "hang"}));
    watcher_->update({{"1", "b"}}); // as a refresh does every other second
    loop_.advance(1);
    EXPECT_EQ(taken(), Lines{});
    watcher_->update({{"1", "c"}});
    loop_.runUntilIdle();
    EXPECT_EQ(taken(), (Lines{"hang cancelled"}));
    loop_.advance(1);
    EXPECT_EQ(taken(), (Lines{"-b", "+c"}));
}

TEST_F(AutomationTriggerWatcherTest, ItMayGoAtAnyMoment) {
    for (const double moment : {0.0, 0.1, 0.3, 0.5, 3.0}) {
        watcher_ = std::make_unique<AutomationTriggerWatcher>(loop_, runner_);
        executor_.durations = {{"-a", 0.5}};
        watcher_->update({{"1", "a"}});
        watcher_->update({{"1", "b"}});
        if (moment > 0) loop_.advance(moment);
        watcher_.reset();
        loop_.advance(5);
        EXPECT_FALSE(loop_.hasRoots());
    }
}

/// What should be run, from the whole history: a state fires when the next different one comes later than
/// the debounce, against the last state that did.
class SlowWatcher {
public:
    void update(double now, const Keys& keys) {
        pass(now);
        if (!settled_) settled_ = keys;
        latest_ = keys;
        if (keys != *settled_) due_ = now + 0.3;
    }
    void pass(double now) {
        if (!due_ || *due_ > now) return;
        due_.reset();
        for (const auto& [display, key] : latest_) {
            const auto before = settled_->find(display);
            if (before == settled_->end())
                lines.push_back("+" + key);
            else if (before->second != key)
                lines.insert(lines.end(), {"-" + before->second, "+" + key});
        }
        settled_ = latest_;
    }
    Lines lines;

private:
    std::optional<Keys> settled_;
    Keys latest_;
    std::optional<double> due_;
};

TEST_F(AutomationTriggerWatcherTest, ARandomWalkRunsWhatASlowReadingOfItSays) {
    std::mt19937 random(7);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    SlowWatcher slow;
    double now = 0;
    std::size_t ran = 0;
    for (int step = 0; step < 5000; ++step) {
        Keys keys;
        for (const char* display : {"1", "2", "linked"})
            if (below(4) > 0) keys[display] = std::string(1, "abc"[below(3)]);
        watcher_->update(keys);
        slow.update(now, keys);
        const double pause = 0.05 + 0.1 * below(6); // never on the debounce itself
        loop_.advance(pause);
        now += pause;
        slow.pass(now);
        ran += executor_.calls.size();
        ASSERT_EQ(taken(), std::exchange(slow.lines, {})) << "step " << step;
    }
    EXPECT_GT(ran, 1000u);
}

} // namespace
} // namespace lumnara
