#include "core/async/TestLoop.h"
#include "core/async/Timer.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace lumnara::async {
namespace {

TEST(Loop, TimersFireByTimeAndThenByTheOrderOfSetting) {
    TestLoop loop;
    std::string order;
    Delayed c(loop, 2, [&] { order += 'c'; });
    Delayed a(loop, 1, [&] { order += 'a'; });
    Delayed d(loop, 2, [&] { order += 'd'; });
    Delayed b(loop, 1, [&] { order += 'b'; });
    loop.advance(0.999);
    EXPECT_EQ(order, "");
    loop.advance(0.001);
    EXPECT_EQ(order, "ab");
    EXPECT_FALSE(a.pending());
    EXPECT_TRUE(c.pending());
    loop.runUntilDone();
    EXPECT_EQ(order, "abcd");
    EXPECT_EQ(loop.now(), wholeNanos(2));
}

// Under random insertions and removals, against sorting.
TEST(Loop, ManyTimersKeepTheirOrderWhileOthersAreDropped) {
    TestLoop loop;
    std::mt19937 random(7);
    std::vector<std::pair<int, int>> fired;
    std::map<std::pair<int, int>, std::unique_ptr<Delayed>> timers;
    for (int i = 0; i < 1'000; ++i) {
        const int seconds = static_cast<int>(random() % 200);
        const std::pair<int, int> entry(seconds, i);
        timers[entry] = std::make_unique<Delayed>(loop, seconds, [&fired, entry] { fired.push_back(entry); });
        if (i % 2 == 0) timers.erase(std::next(timers.begin(), static_cast<long>(random() % timers.size())));
    }
    EXPECT_EQ(loop.timerCount(), timers.size());
    loop.runUntilDone();
    std::vector<std::pair<int, int>> expected;
    for (const auto& [entry, timer] : timers) expected.push_back(entry);
    EXPECT_EQ(fired, expected);
}

TEST(Loop, ATimerMayBeDestroyedFromItsOwnCallAndFromAnothers) {
    TestLoop loop;
    int ticks = 0;
    int calls = 0;
    std::optional<Repeating> repeating;
    std::optional<Delayed> delayed;
    std::optional<Delayed> victim;
    repeating.emplace(loop, 1, [&, text = std::string(100, 'x')] {
        if (++ticks == 3) repeating.reset();
        EXPECT_EQ(text.size(), 100u); // the closure lives to the end of its call
    });
    delayed.emplace(loop, 1, [&, text = std::string(100, 'x')] {
        victim.reset();
        delayed.emplace(loop, 1, [&] { ++calls; });
        EXPECT_EQ(text.size(), 100u);
    });
    victim.emplace(loop, 1, [] { FAIL() << "destroyed at the same moment, before its call"; });
    loop.advance(10);
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(loop.timerCount(), 0u);
}

struct CountingWake : Wake {
    CountingWake(Loop& l, int& f)
        : Wake([](Wake& wake) {
              auto& self = static_cast<CountingWake&>(wake);
              ++self.fired;
              self.loop.ready(self);
          }),
          loop(l),
          fired(f) {}
    Loop& loop;
    int& fired;
};

TEST(Loop, WhatBecomesReadyInATurnWaitsForTheNext) {
    TestLoop loop;
    int runs = 0;
    std::function<void()> again = [&] {
        ++runs;
        loop.inbox()->post(again);
    };
    loop.inbox()->post(again);
    int fired = 0;
    CountingWake wake(loop, fired);
    loop.ready(wake);
    EXPECT_TRUE(loop.turn());
    EXPECT_TRUE(loop.turn());
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(fired, 2);
}

/// Turns the loop only when the loop has asked for it, as a toolkit does.
class AskedDriver : public Driver {
public:
    Nanos now() const override { return now_; }
    Date date() const override { return {}; }
    void wakeUp() override { asked_ = true; }
    void armTimer(Nanos due) override { due_ = due; }
    void disarmTimer() override { due_.reset(); }
    std::unique_ptr<FdWatch> watchReadable(int, std::function<void()>) override { return nullptr; }

    void run(Loop& loop) {
        while (asked_ || due_) {
            if (!std::exchange(asked_, false)) now_ = std::max(now_, *std::exchange(due_, std::nullopt));
            loop.turn();
        }
    }

private:
    Nanos now_{};
    bool asked_ = false;
    std::optional<Nanos> due_;
};

// A modal platform loop inside a call runs what is posted, ready and due, of this turn and of later ones.
TEST(Loop, AModalLoopInsideACallRunsTheRest) {
    AskedDriver driver;
    Loop loop(driver);
    std::string order;
    loop.inbox()->post([&] {
        order += "(";
        driver.run(loop);
        order += ")";
    });
    loop.inbox()->post([&] { order += "p"; });
    Delayed now(loop, 0, [&] { order += "t"; });
    Delayed later(loop, 5, [&] {
        order += "[";
        driver.run(loop);
        order += "]";
    });
    Delayed atTheSameTime(loop, 5, [&] { order += "u"; });
    driver.run(loop);
    EXPECT_EQ(order, "(pt[u])");
}

TEST(Loop, ItsInboxOutlivesItAndRefusesWork) {
    std::shared_ptr<Inbox> inbox;
    int destroyed = 0;
    struct PostsWhenDestroyed {
        std::shared_ptr<Inbox> inbox;
        int& destroyed;
        ~PostsWhenDestroyed() {
            ++destroyed;
            EXPECT_FALSE(inbox->post([] {}));
        }
    };
    {
        TestLoop loop;
        inbox = loop.inbox();
        auto held = std::make_shared<PostsWhenDestroyed>(inbox, destroyed);
        EXPECT_TRUE(inbox->post([held] { FAIL() << "the loop never ran"; }));
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_FALSE(inbox->post([] { FAIL() << "ran without a loop"; }));
}

TEST(TestLoop, TheDateMovesWithTheTime) {
    TestLoop loop;
    EXPECT_EQ(loop.date().iso8601(), "2026-01-05T09:00:00Z");
    loop.advance(90.5);
    EXPECT_EQ(loop.date().secondsSince(*Date::fromISO8601("2026-01-05T09:00:00Z")), 90.5);
}

TEST(TestLoop, LooksAtWatchedDescriptorsWithoutWaiting) {
    TestLoop loop;
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    std::string got;
    auto watch = loop.watchReadable(pipe[0], [&] {
        char c = 0;
        ASSERT_EQ(::read(pipe[0], &c, 1), 1);
        got += c;
    });
    loop.runUntilIdle();
    EXPECT_EQ(got, "");
    ASSERT_EQ(::write(pipe[1], "abc", 3), 3);
    // A timer that writes: the answer is there before the time goes on.
    Delayed late(loop, 1, [&] { ASSERT_EQ(::write(pipe[1], "d", 1), 1); });
    Delayed later(loop, 2, [&] { EXPECT_EQ(got, "abcd"); });
    loop.runUntilIdle();
    EXPECT_EQ(got, "abc");
    loop.runUntilDone();
    EXPECT_EQ(got, "abcd");
    ::close(pipe[1]);
    watch.reset(); // before the hang-up, which stays readable for ever
    loop.runUntilIdle();
    ::close(pipe[0]);
}

TEST(WholeNanos, CutsAndStaysInRange) {
    EXPECT_EQ(wholeNanos(0.12).count(), 120'000'000);
    EXPECT_EQ(wholeNanos(1.9999999999).count(), 1'999'999'999);
    EXPECT_EQ(wholeNanos(1e300), wholeNanos(1e9));
    EXPECT_GT((wholeNanos(1e300) + wholeNanos(1e300)).count(), 0);
}

} // namespace
} // namespace lumnara::async
