#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "core/async/Trigger.h"

#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace lumnara::async {
namespace {

Task<> sleepAndNote(double seconds, std::string& notes) {
    notes += co_await sleepUnlessCancelled(seconds) ? "slept " : "cancelled ";
}

Task<std::string> lengthOf(std::string text, double seconds) {
    if (seconds > 0) co_await sleepFor(seconds);
    if (text.empty()) throw std::invalid_argument("empty");
    co_return std::to_string(text.size());
}

Task<> noteLength(std::string text, double seconds, std::string& notes) {
    try {
        const std::string length = co_await lengthOf(text, seconds);
        notes += length + " ";
    } catch (const std::invalid_argument& error) {
        notes += std::string(error.what()) + " ";
    }
}

TEST(Task, StartsOnTheNextTurnAndBringsValuesAndErrors) {
    TestLoop loop;
    std::string notes;
    auto first = spawn(loop, noteLength("four", 0, notes));
    auto second = spawn(loop, noteLength("", 0, notes));
    auto third = spawn(loop, noteLength(std::string(100, 'x'), 2, notes));
    auto fourth = spawn(loop, noteLength("", 1, notes));
    EXPECT_EQ(notes, "") << "ran inside spawn";
    loop.runUntilIdle();
    EXPECT_EQ(notes, "4 empty ");
    loop.runUntilDone();
    EXPECT_EQ(notes, "4 empty empty 100 ");
    EXPECT_FALSE(loop.hasRoots());
}

TEST(Task, DroppingTheHandleCancelsDetachingDoesNot) {
    TestLoop loop;
    std::string notes;
    {
        auto dropped = spawn(loop, sleepAndNote(5, notes));
    }
    loop.runUntilIdle();
    EXPECT_EQ(notes, "cancelled ");
    auto replaced = spawn(loop, sleepAndNote(5, notes));
    loop.advance(1);
    replaced = spawn(loop, sleepAndNote(5, notes));
    loop.runUntilIdle();
    EXPECT_EQ(notes, "cancelled cancelled ");
    EXPECT_EQ(loop.timerCount(), 1u);
    replaced.detach();
    EXPECT_FALSE(replaced);
    loop.runUntilDone();
    EXPECT_EQ(notes, "cancelled cancelled slept ");
    EXPECT_EQ(loop.now(), wholeNanos(6));
}

Task<> threeWaits(std::string& notes) {
    co_await sleepAndNote(1, notes);
    co_await sleepAndNote(1, notes);
    const auto context = co_await currentContext();
    notes += context.stop.stop_requested() ? "stopped " : "running ";
    co_await sleepFor(1);
    notes += "not reached";
}

TEST(Task, CancellationIsAStateThatEveryLaterWaitSees) {
    TestLoop loop;
    std::string notes;
    auto task = spawn(loop, threeWaits(notes));
    loop.advance(0.5);
    task.cancel();
    EXPECT_EQ(notes, "") << "ran inside cancel";
    loop.turn();
    EXPECT_EQ(notes, "cancelled cancelled stopped ") << "the later waits end at once, not a turn later";
    EXPECT_EQ(loop.now(), wholeNanos(0.5));
    EXPECT_EQ(loop.timerCount(), 0u);
    EXPECT_FALSE(loop.hasRoots()) << "Cancelled ends a task quietly";
}

struct CountsAlive {
    explicit CountsAlive(int& alive) : alive_(alive) { ++alive_; }
    ~CountsAlive() { --alive_; }
    int& alive_;
};

Task<> holdInChild(std::shared_ptr<CountsAlive> held) {
    co_await sleepFor(100);
    held.reset();
}
Task<> holdForLong(std::shared_ptr<CountsAlive> held) {
    co_await holdInChild(held);
    held.reset();
}

TEST(Task, FramesAreFreedWhereverTheyStand) {
    int alive = 0;
    {
        TestLoop loop;
        {
            const auto neverAwaited = holdForLong(std::make_shared<CountsAlive>(alive));
        }
        EXPECT_EQ(alive, 0);
        spawn(loop, holdForLong(std::make_shared<CountsAlive>(alive))).detach();
        loop.advance(1);
        spawn(loop, holdForLong(std::make_shared<CountsAlive>(alive))).detach();
        EXPECT_EQ(alive, 2);
    }
    EXPECT_EQ(alive, 0) << "tasks parked, or not yet started, when their loop went";
}

TEST(Task, AHandleMayOutliveTheLoop) {
    TaskHandle handle;
    std::string notes;
    {
        TestLoop loop;
        handle = spawn(loop, sleepAndNote(5, notes));
        loop.advance(1);
    }
    handle.cancel();
    EXPECT_EQ(notes, "");
}

Task<int> answerAtOnce() { co_return 1; }
Task<> awaitMany(int count, int& sum) {
    for (int i = 0; i < count; ++i) {
        const int one = co_await answerAtOnce();
        sum += one;
    }
}

TEST(Task, ALongLoopOfTasksDoesNotGrowTheStack) {
    TestLoop loop;
    int sum = 0;
    auto task = spawn(loop, awaitMany(200'000, sum));
    loop.runUntilDone();
    EXPECT_EQ(sum, 200'000);
}

Task<> noteTrigger(Trigger& trigger, double seconds, std::string& notes) {
    notes += co_await trigger.wait(seconds) ? "fired " : "not ";
}
Task<> noteEarlyTrigger(Trigger& trigger, std::string& notes) {
    trigger.fire(); // a firing before the wait begins doesn't count
    Task<bool> wait = trigger.wait(1);
    trigger.fire();
    notes += co_await std::move(wait) ? "fired " : "not ";
    co_await noteTrigger(trigger, 1, notes);
}

TEST(Trigger, EndsTheWaitsThatHaveBegun) {
    TestLoop loop;
    std::string notes;
    Trigger trigger;
    auto one = spawn(loop, noteTrigger(trigger, 5, notes));
    auto two = spawn(loop, noteTrigger(trigger, 1, notes));
    auto three = spawn(loop, noteTrigger(trigger, 9, notes));
    loop.advance(2);
    EXPECT_EQ(notes, "not ");
    three.cancel();
    loop.runUntilIdle();
    EXPECT_EQ(notes, "not not ");
    trigger.fire();
    EXPECT_EQ(notes, "not not ") << "ran inside fire";
    loop.runUntilIdle();
    EXPECT_EQ(notes, "not not fired ");
    EXPECT_EQ(loop.timerCount(), 0u);

    notes.clear();
    auto early = spawn(loop, noteEarlyTrigger(trigger, notes));
    loop.runUntilIdle();
    EXPECT_EQ(notes, "fired ");
    loop.runUntilDone();
    EXPECT_EQ(notes, "fired not ");
}

TEST(Trigger, MayGoWhileATaskWaits) {
    TestLoop loop;
    std::string notes;
    std::optional<Trigger> trigger(std::in_place);
    auto task = spawn(loop, noteTrigger(*trigger, 1, notes));
    loop.runUntilIdle();
    trigger.reset();
    loop.runUntilDone();
    EXPECT_EQ(notes, "not ");
}

} // namespace
} // namespace lumnara::async
