#include "core/async/Stream.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/async/TestLoop.h"

#include <gtest/gtest.h>
#include <numeric>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace lumnara::async {
namespace {

Task<> consume(EventStream<int>& stream, std::vector<int>& got, bool& ended) {
    while (auto item = co_await stream.next()) got.push_back(*item);
    ended = true;
}

TEST(EventStream, KeepsTheOrderOfAProducerOnAnotherThread) {
    PollLoop loop;
    EventStream<int> stream(loop);
    std::vector<int> got;
    bool ended = false;
    auto task = spawn(loop, consume(stream, got, ended));
    constexpr int count = 20'000;
    std::thread producer([feed = stream.feed()] {
        for (int i = 0; i < count; ++i) feed.send(i);
        feed.finish();
        feed.send(-1); // too late
    });
    EXPECT_TRUE(loop.runUntil([&] { return ended; }, 30));
    producer.join();
    std::vector<int> expected(count);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(got, expected);
}

TEST(EventStream, DeliversWhatWasSentBeforeAnybodyListened) {
    TestLoop loop;
    EventStream<int> stream(loop);
    const auto feed = stream.feed();
    feed.send(1);
    feed.send(2);
    std::vector<int> got;
    bool ended = false;
    auto task = spawn(loop, consume(stream, got, ended));
    loop.runUntilIdle();
    EXPECT_EQ(got, (std::vector<int>{1, 2}));
    EXPECT_FALSE(ended);
    feed.send(3);
    feed.finish();
    loop.runUntilIdle();
    EXPECT_EQ(got, (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(ended);
}

TEST(EventStream, ACancelledConsumerLeavesTheRestToTheNext) {
    TestLoop loop;
    EventStream<int> stream(loop);
    std::vector<int> got;
    bool ended = false;
    auto parked = spawn(loop, consume(stream, got, ended));
    loop.runUntilIdle();
    stream.feed().send(1);
    parked.cancel(); // before the item's turn came
    loop.runUntilIdle();
    EXPECT_TRUE(ended);
    EXPECT_TRUE(got.empty());

    ended = false;
    auto next = spawn(loop, consume(stream, got, ended));
    loop.runUntilIdle();
    EXPECT_EQ(got, std::vector<int>{1});
    EXPECT_FALSE(ended);
}

// The thread goes on while the consumer's frame, the stream and the loop go.
TEST(EventStream, AFeedOutlivesEverything) {
    for (int round = 0; round < 50; ++round) {
        std::thread producer;
        {
            TestLoop loop;
            EventStream<int> stream(loop);
            std::vector<int> got;
            bool ended = false;
            spawn(loop, consume(stream, got, ended)).detach();
            loop.runUntilIdle();
            producer = std::thread([feed = stream.feed()] {
                for (int i = 0; i < 200; ++i) feed.send(i);
            });
            loop.runUntilIdle();
        }
        producer.join();
    }
}

} // namespace
} // namespace lumnara::async
