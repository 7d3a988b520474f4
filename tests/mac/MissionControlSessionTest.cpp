#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include "tests/mac/Arranging.h"

#include <limits>

namespace lumnara {
namespace {

using testing::Arranging;
using testing::finish;
using testing::WatchedDriver;
using Case = SpaceReorderError::Case;

class MissionControlSessionTest : public ::testing::Test, protected Arranging {
protected:
    testing::Ended<bool> open(int expectedCount = 4) {
        driver.moves = 0;
        return finish(loop, session.open(mac.layout().screens()[0].frame, expectedCount));
    }
    void close() { finish(loop, session.close()); }
    double seconds() const { return async::secondsOf(loop.now()); }

    MissionControlSession session{driver};
};

TEST_F(MissionControlSessionTest, WaitsThreeSecondsForItToOpen) {
    std::unique_ptr<async::Delayed> late;
    driver.onCall = [&] {
        if (driver.opens == 1 && !late) // and the Dock takes up to 0.4 s
            late = std::make_unique<async::Delayed>(loop, 2.55, [&] { mac.missionControl().toggle(); });
    };
    const auto openWithoutDock = [&] {
        mac.inject(SimulatedFault::dockRestarted);
        return open();
    };
    EXPECT_TRUE(openWithoutDock().result);
    EXPECT_GT(seconds(), 2.6 + 0.5 + 0.95);
    close();
    const double start = seconds();
    EXPECT_TRUE(openWithoutDock().failedWith(SpaceReorderError(Case::missionControlDidNotOpen)));
    EXPECT_NEAR(seconds() - start, 3.0, 1e-6);
    EXPECT_EQ(driver.moves, 0);
}

TEST_F(MissionControlSessionTest, GivesUpOnABarThatStaysOtherThanExpected) {
    EXPECT_TRUE(open(5).failedWith(SpaceReorderError(Case::spacesBarNotFound)));
    EXPECT_EQ(driver.moves, 9);
    EXPECT_EQ(driver.escapes, 0) << "whoever opened closes";
    close();
    const Size label{100, 26}, nothing{100, 0};
    for (const Size size : {label, nothing}) {
        accessibility.damage = [=](std::string_view name, const AccessibilityValue& value) {
            return std::optional(name == "AXSize" ? AccessibilityValue(size) : value);
        };
        EXPECT_TRUE(open().failedWith(SpaceReorderError(Case::spacesBarNotFound)));
        close();
    }
}

TEST_F(MissionControlSessionTest, TakesNoticeWhenItIsClosedWhileHovering) {
    at(&WatchedDriver::moves, 5, [](Arranging& at) { at.mac.missionControl().vanish(); });
    EXPECT_TRUE(open(5).failedWith(SpaceReorderError(Case::missionControlDidNotOpen)));
    EXPECT_EQ(driver.moves, 6);
}

TEST_F(MissionControlSessionTest, ClosesWithTwoEscapesAtMost) {
    struct Closing {
        int lost, escapes;
        double seconds;
    };
    for (const Closing& each : {Closing{0, 1, 0.8}, {1, 2, 2.3}, {2, 2, 3.4}}) {
        open();
        driver.escapes = 0;
        driver.onCall = [&] {
            if (driver.escapes > 0 && driver.escapes <= each.lost) mac.inject(SimulatedFault::gestureLost);
        };
        const double start = seconds();
        close();
        EXPECT_EQ(driver.escapes, each.escapes);
        EXPECT_NEAR(seconds() - start, each.seconds, 0.101);
        EXPECT_EQ(mac.missionControl().isUp(), each.lost == 2);
        mac.missionControl().vanish();
    }
}

TEST(MissionControlBar, IsExpandedWithPicturesAtTheDisplaysTop) {
    const Rect display{0, 100, 1440, 900};
    const auto expanded = [&](double y, double height) {
        return MissionControlSession::isExpanded({{"Desktop 1", {0, y, 100, height}}}, display);
    };
    EXPECT_TRUE(expanded(130, 100));
    EXPECT_TRUE(expanded(99, 27));
    EXPECT_FALSE(expanded(130, 26));
    EXPECT_FALSE(expanded(98, 100));
    EXPECT_FALSE(expanded(130, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(MissionControlSession::isExpanded({}, display));
}

} // namespace
} // namespace lumnara
