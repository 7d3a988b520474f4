#include "app/qt/QtDriver.h"

#include "core/async/Loop.h"
#include "core/async/Timer.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace lumnara {
namespace {

struct Driven {
    Driven() : loop(driver) { driver.attach(loop); }
    /// Handles events, waiting for them, until `done`; the test's time limit is the only other end.
    void until(const std::function<bool()>& done) {
        while (!done()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QtDriver driver;
    async::Loop loop;
};

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe(ends), 0); }
    ~Pipe() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    void write() const { EXPECT_EQ(::write(ends[1], "x", 1), 1); }
    int ends[2];
};

TEST(QtDriver, runsWhatOtherThreadsPostAndTimersInOrder) {
    Driven driven;
    std::vector<int> order;
    async::Delayed later(driven.loop, 0.03, [&order] { order.push_back(3); });
    async::Delayed sooner(driven.loop, 0.01, [&order] { order.push_back(2); });
    std::thread other(
        [inbox = driven.loop.inbox(), &order] { inbox->post([&order] { order.push_back(1); }); });
    const async::Nanos begin = driven.loop.now();
    driven.until([&order] { return order.size() == 3; });
    other.join();
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_GE(async::secondsOf(driven.loop.now() - begin), 0.03);
}

TEST(QtDriver, callsBackForAsLongAsADescriptorIsReadable) {
    Driven driven;
    const Pipe pipe;
    pipe.write();
    int calls = 0;
    std::unique_ptr<async::FdWatch> watch;
    watch = driven.loop.watchReadable(pipe.ends[0], [&] {
        // Ends from inside its own callback, with the byte still unread.
        if (++calls == 3) watch.reset();
    });
    driven.until([&] { return calls == 3; });
    bool passed = false;
    async::Delayed after(driven.loop, 0.02, [&passed] { passed = true; });
    driven.until([&] { return passed; });
    EXPECT_EQ(calls, 3);
}

TEST(QtDriver, watchesMayOutliveIt) {
    const Pipe pipe;
    std::unique_ptr<async::FdWatch> watch;
    {
        Driven driven;
        watch = driven.loop.watchReadable(pipe.ends[0], [] { FAIL(); });
    }
    watch.reset();
    pipe.write();
    QCoreApplication::processEvents();
}

} // namespace
} // namespace lumnara
