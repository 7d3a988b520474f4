#include "core/tracking/IdleMonitor.h"

#include "core/async/TestLoop.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

class IdleMonitorTest : public ::testing::Test {
protected:
    IdleMonitorTest() {
        monitor.onChange = [this](bool idle) { changes += idle ? "idle " : "back "; };
    }

    async::TestLoop loop;
    double seconds = 0;
    int looks = 0;
    IdleMonitor monitor{loop, 300, [this] {
                            ++looks;
                            return seconds;
                        }};
    std::string changes;
};

TEST_F(IdleMonitorTest, TellsEachChangeOnceAndTakesTheThresholdForIdle) {
    monitor.start(5);
    EXPECT_EQ(looks, 1) << "at once";
    seconds = 299.9;
    loop.advance(5);
    EXPECT_FALSE(monitor.isIdle());
    seconds = 300;
    loop.advance(10);
    EXPECT_TRUE(monitor.isIdle());
    seconds = 0;
    monitor.check();
    EXPECT_EQ(changes, "idle back ");
    seconds = 60;
    monitor.threshold = 60;
    loop.advance(5);
    EXPECT_EQ(changes, "idle back idle ");
}

TEST_F(IdleMonitorTest, HasOneTimerWhateverIsStartedAgain) {
    monitor.start(5);
    monitor.start(2);
    looks = 0;
    loop.advance(10);
    EXPECT_EQ(looks, 5);
    EXPECT_TRUE(monitor.isRunning());
    monitor.stop();
    loop.advance(60);
    EXPECT_EQ(looks, 5);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST_F(IdleMonitorTest, ASessionThatTellsNothingIsNeverIdle) {
    struct Source : IdleSource {
        std::optional<double> secondsSinceInput() override { return told; }
        std::optional<double> told;
    } source;
    IdleMonitor silent(loop, 10, nullptr), asking(loop, 10, &source);
    silent.check();
    asking.check();
    EXPECT_FALSE(silent.isIdle() || asking.isIdle());
    source.told = 10;
    asking.check();
    EXPECT_TRUE(asking.isIdle());
}

} // namespace
} // namespace lumnara
