#include "core/async/Task.h"
#include "core/async/TestLoop.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace lumnara::async {
namespace {

Task<int> number(int value, double seconds, std::string& notes) {
    const bool whole = co_await sleepUnlessCancelled(seconds);
    notes += std::to_string(value) + (whole ? " " : "! ");
    co_return value;
}
Task<std::string> failing(double seconds) {
    co_await sleepFor(seconds);
    throw std::runtime_error("failed");
}
template <class A, class B> Task<> noteRace(Task<A> a, Task<B> b, std::string& notes) {
    try {
        const auto result = co_await race(std::move(a), std::move(b));
        notes += "winner " + std::to_string(result.index()) + " ";
    } catch (const std::runtime_error& error) {
        notes += std::string(error.what()) + " ";
    }
}

TEST(Race, TheFirstToEndDecidesAndTheLoserEndsBeforeTheRace) {
    TestLoop loop;
    std::string notes;
    auto first = spawn(loop, noteRace(number(1, 1, notes), number(2, 5, notes), notes));
    loop.runUntilDone();
    EXPECT_EQ(notes, "1 2! winner 0 ");
    EXPECT_EQ(loop.now(), wholeNanos(1));

    notes.clear();
    auto second = spawn(loop, noteRace(number(1, 5, notes), number(2, 0, notes), notes));
    loop.runUntilDone();
    EXPECT_EQ(notes, "2 1! winner 1 ");
    EXPECT_EQ(loop.now(), wholeNanos(1));
}

TEST(Race, AFailureDecidesToo) {
    TestLoop loop;
    std::string notes;
    auto fails = spawn(loop, noteRace(number(1, 5, notes), failing(1), notes));
    loop.runUntilDone();
    EXPECT_EQ(notes, "1! failed ");
    EXPECT_EQ(loop.now(), wholeNanos(1));

    notes.clear(); // a loser's failure is nobody's
    auto late = spawn(loop, noteRace(number(1, 1, notes), failing(5), notes));
    loop.runUntilDone();
    EXPECT_EQ(notes, "1 winner 0 ");
}

Task<> endAtOnce() { co_return; }
Task<> waitForStubborn(int& ended) {
    co_await sleepUnlessCancelled(100);
    // Bounded work that goes on although the task is cancelled.
    for (int i = 0; i < 3; ++i) co_await sleepUnlessCancelled(1);
    ++ended;
}

TEST(Race, ALoserThatGoesOnIsAwaited) {
    TestLoop loop;
    std::string notes;
    int ended = 0;
    auto task = spawn(loop, noteRace(endAtOnce(), waitForStubborn(ended), notes));
    loop.runUntilIdle();
    EXPECT_EQ(ended, 1);
    EXPECT_EQ(notes, "winner 0 ");
}

TEST(Race, CancellingTheAwaitingTaskCancelsBothArms) {
    TestLoop loop;
    std::string notes;
    auto parked = spawn(loop, noteRace(number(1, 5, notes), number(2, 9, notes), notes));
    loop.advance(1);
    parked.cancel();
    loop.runUntilIdle();
    EXPECT_EQ(notes, "1! 2! winner 0 ");

    notes.clear();
    auto cancelledBefore = spawn(loop, noteRace(number(1, 5, notes), number(2, 9, notes), notes));
    cancelledBefore.cancel();
    loop.runUntilIdle();
    EXPECT_EQ(notes, "1! 2! winner 0 ");
    EXPECT_EQ(loop.timerCount(), 0u);
}

TEST(Race, RacesNest) {
    TestLoop loop;
    std::string notes;
    auto task = spawn(loop, noteRace(noteRace(number(1, 5, notes), number(2, 6, notes), notes),
                                     noteRace(number(3, 1, notes), failing(9), notes), notes));
    loop.runUntilDone();
    EXPECT_EQ(notes, "3 winner 0 1! 2! winner 0 winner 1 ");
    EXPECT_EQ(loop.now(), wholeNanos(1));
}

TEST(Race, ItsFramesAreFreedWithTheLoop) {
    std::string notes;
    {
        TestLoop loop;
        spawn(loop, noteRace(number(1, 5, notes), number(2, 9, notes), notes)).detach();
        loop.advance(1);
    }
    EXPECT_EQ(notes, "");
}

} // namespace
} // namespace lumnara::async
