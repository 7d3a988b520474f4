#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/async/Timer.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

namespace lumnara::async {
namespace {

class Pipe {
public:
    Pipe() {
        if (::pipe(ends_.data()) != 0) throw std::runtime_error("pipe");
    }
    ~Pipe() {
        ::close(ends_[0]);
        closeWriting();
    }
    int reading() const { return ends_[0]; }
    char read() const {
        char c = 0;
        return ::read(ends_[0], &c, 1) == 1 ? c : '.';
    }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void closeWriting() {
        if (ends_[1] >= 0) ::close(std::exchange(ends_[1], -1));
    }

private:
    std::array<int, 2> ends_{};
};

TEST(PollLoop, AWatchTellsOfDataAndOfTheHangUp) {
    PollLoop loop;
    Pipe pipe;
    std::string got;
    std::unique_ptr<FdWatch> watch;
    watch = loop.watchReadable(pipe.reading(), [&, text = std::string(100, 'x')] {
        got += pipe.read();
        if (got.back() == '.') watch.reset();
        EXPECT_EQ(text.size(), 100u); // the closure lives to the end of its call
    });
    std::thread writer([&] {
        pipe.write("abc");
        pipe.closeWriting();
    });
    EXPECT_TRUE(loop.runUntil([&] { return watch == nullptr; }, 30));
    writer.join();
    EXPECT_EQ(got, "abc.");
}

TEST(PollLoop, AWatchEndedByAnothersCallbackIsNotCalled) {
    PollLoop loop;
    Pipe a;
    Pipe b;
    a.write("x");
    b.write("x");
    int calls = 0;
    std::unique_ptr<FdWatch> first;
    std::unique_ptr<FdWatch> second;
    std::unique_ptr<FdWatch> added;
    first = loop.watchReadable(a.reading(), [&] {
        ++calls;
        second.reset();
        first.reset();
        added = loop.watchReadable(b.reading(), [&] {
            calls += 10;
            added.reset();
        });
    });
    second = loop.watchReadable(b.reading(), [&] { FAIL() << "ended in the same round"; });
    EXPECT_TRUE(loop.runUntil([&] { return calls == 11; }, 30));
}

TEST(PollLoop, AWatchMayOutliveTheLoop) {
    Pipe pipe;
    std::unique_ptr<FdWatch> watch;
    {
        PollLoop loop;
        watch = loop.watchReadable(pipe.reading(), [] {});
    }
    watch.reset();
}

Task<> countWaits(int& waits) {
    for (int i = 0; i < 3; ++i) {
        co_await sleepFor(0.002);
        ++waits;
    }
}

TEST(PollLoop, RunsTimersAtTheirTimeAndEndsAtItsOwn) {
    PollLoop loop;
    int waits = 0;
    const Nanos start = loop.now();
    auto task = spawn(loop, countWaits(waits));
    EXPECT_TRUE(loop.runUntil([&] { return waits == 3; }, 30));
    EXPECT_GE(loop.now() - start, wholeNanos(0.006));

    const Nanos second = loop.now();
    Delayed far(loop, 1'000, [] { FAIL() << "a thousand seconds early"; });
    EXPECT_FALSE(loop.runUntil([] { return false; }, 0.005));
    EXPECT_GE(loop.now() - second, wholeNanos(0.005));
    EXPECT_LT(loop.now() - second, wholeNanos(20));
}

TEST(PollLoop, AnotherThreadWakesIt) {
    PollLoop loop;
    bool heard = false;
    std::thread other([inbox = loop.inbox(), &heard] { inbox->post([&heard] { heard = true; }); });
    EXPECT_TRUE(loop.runUntil([&] { return heard; }, 30));
    other.join();
}

} // namespace
} // namespace lumnara::async
