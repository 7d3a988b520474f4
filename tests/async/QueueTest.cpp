#include "core/async/OnQueue.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"

#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <thread>

namespace lumnara::async {
namespace {

struct HopReport {
    int sum = 0;
    bool workedElsewhere = true;
    bool cameBack = true;
    std::string failure;
};

Task<> hopOften(SerialQueue& queue, HopReport& report) {
    const auto home = std::this_thread::get_id();
    for (int i = 0; i < 1'000; ++i) {
        OnQueue hop(queue, [i, home] { return std::this_thread::get_id() != home ? i : -1; });
        const int value = co_await hop;
        report.sum += value;
        report.cameBack = report.cameBack && std::this_thread::get_id() == home;
    }
    OnQueue fails(queue, []() -> int { throw std::runtime_error("on the queue"); });
    try {
        const int value = co_await fails;
        report.sum += value;
    } catch (const std::runtime_error& error) {
        report.failure = error.what();
    }
    OnQueue nothing(queue, [] {});
    co_await nothing;
}

TEST(SerialQueue, AHopBringsValuesAndErrorsHome) {
    PollLoop loop;
    SerialQueue queue("hops");
    HopReport report;
    auto task = spawn(loop, hopOften(queue, report));
    EXPECT_TRUE(loop.runUntil([&] { return !loop.hasRoots(); }, 30));
    EXPECT_EQ(report.sum, 499'500);
    EXPECT_TRUE(report.cameBack);
    EXPECT_EQ(report.failure, "on the queue");
}

TEST(SerialQueue, DrainWaitsForAllThatWasPostedInOrder) {
    SerialQueue queue("drain");
    std::string order; // the queue's own until it is drained
    for (char c = 'a'; c <= 'z'; ++c)
        queue.post([&order, c] {
            std::this_thread::yield();
            order += c;
        });
    queue.drain();
    EXPECT_EQ(order, "abcdefghijklmnopqrstuvwxyz");
    queue.drain();
}

TEST(SerialQueue, ItsEndRunsWhatIsLeft) {
    std::atomic<int> runs = 0;
    {
        SerialQueue queue("end");
        for (int i = 0; i < 100; ++i) queue.post([&runs] { ++runs; });
    }
    EXPECT_EQ(runs, 100);
}

Task<> hopOnce(SerialQueue& queue, std::string& result) {
    OnQueue hop(queue, [] {
        std::this_thread::yield();
        return std::string(100, 'x');
    });
    result = "started";
    std::string value = co_await hop;
    result = std::move(value);
}

TEST(SerialQueue, AResultForATaskThatDiedIsDropped) {
    SerialQueue queue("late");
    std::string result;
    for (int i = 0; i < 200; ++i) {
        TestLoop loop;
        auto task = spawn(loop, hopOnce(queue, result));
        loop.runUntilIdle();
        if (i % 2 == 0) queue.drain(); // the result waits in the inbox
    }
    queue.drain();
    EXPECT_TRUE(result == "started" || result.size() == 100) << result;
}

TEST(SerialQueue, UnderAVirtualClockDrainThenRun) {
    SerialQueue queue("virtual");
    TestLoop loop;
    std::string result;
    auto task = spawn(loop, hopOnce(queue, result));
    loop.runUntilIdle();
    task.cancel(); // doesn't cut the work short
    queue.drain();
    loop.runUntilIdle();
    EXPECT_EQ(result, std::string(100, 'x'));
}

} // namespace
} // namespace lumnara::async
