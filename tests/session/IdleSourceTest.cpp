#include "core/async/PollLoop.h"
#include "core/async/Timer.h"
#include "core/platform/i3sway/SwayIdleSource.h"
#include "core/platform/x11/X11IdleSource.h"
#include "tests/session/Session.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

/// Input counts, and its absence is counted.
void expectToCount(async::PollLoop& loop, IdleSource& source, const std::function<void()>& touch) {
    const async::Repeating looking(loop, 0.05, [] {}); // time alone wakes no loop
    const auto seconds = [&] { return source.secondsSinceInput(); };
    ASSERT_TRUE(loop.runUntil([&] { return seconds() >= 1.2; }, 30));
    touch();
    EXPECT_TRUE(loop.runUntil([&] { return seconds() < 1.0; }, 10)) << *seconds();
    EXPECT_TRUE(loop.runUntil([&] { return seconds() >= 1.1; }, 30)) << *seconds();
    EXPECT_LT(*seconds(), 5.0);
}

TEST(IdleSource, TheXServerCountsTheTimeSinceTheLastInput) {
    XSession session(WindowManager::none);
    async::PollLoop loop;
    const auto source = X11IdleSource::on(X11Connection::open(loop, session.display()));
    ASSERT_TRUE(source);
    expectToCount(loop, *source, [&] { session.movePointer(100, 100); });
    expectToCount(loop, *source, [&] { session.click(10, 10); });
    session.killServer();
    const async::Repeating looking(loop, 0.05, [] {});
    EXPECT_TRUE(loop.runUntil([&] { return !source->secondsSinceInput(); }, 10));
}

TEST(IdleSource, SwayTellsWhenTheSeatIsIdle) {
    SwaySession session;
    async::PollLoop loop;
    const auto source = SwayIdleSource::connect(loop, Environment(session.environment()));
    ASSERT_TRUE(source);
    EXPECT_EQ(source->secondsSinceInput(), std::nullopt) << "before sway has answered";
    expectToCount(loop, *source, [&] { ASSERT_EQ(session.run({"wtype", "-k", "space"}).status, 0); });
    session.killWindowManager();
    EXPECT_TRUE(loop.runUntil([&] { return !source->secondsSinceInput(); }, 10));
    EXPECT_FALSE(SwayIdleSource::connect(loop, Environment(session.environment())));
    EXPECT_FALSE(SwayIdleSource::connect(loop, Environment(Variables{})));
}

} // namespace
} // namespace lumnara::testing
