#include "core/platform/mac/missioncontrol/MissionControlSession.h"
#include "tests/mac/MissionControlTest.h"

namespace lumnara {
namespace {

using testing::finish;
using Case = SpaceReorderError::Case;

class MissionControlSessionTest : public testing::MissionControlTest {
protected:
    testing::Ended<bool> open(int expectedCount = 4) {
        return finish(loop, session.open(mc.frames["D1"], expectedCount));
    }

    MissionControlSession session{mc};
};

TEST_F(MissionControlSessionTest, OpensAndHoversUntilTheBarHasExpanded) {
    std::vector<std::string> said;
    session.onProgress = [&](const std::string& sentence) { said.push_back(sentence); };
    mc.opensAfter = 0;
    EXPECT_TRUE(open().value);
    EXPECT_EQ(mc.pauses, std::vector<double>({0.5, 0.1, 0.15, 0.7}));
    EXPECT_EQ(mc.pointer, (Point{724, 22}));
    EXPECT_EQ(said, std::vector<std::string>({"Opening Mission Control"}));

    finish(loop, session.close());
    mc.moves = 0;
    mc.expandsInRound = 3;
    EXPECT_TRUE(open().value);
    EXPECT_EQ(mc.moves, 9);
    EXPECT_EQ(mc.pointer, (Point{724, 38}));
}

TEST_F(MissionControlSessionTest, WaitsThreeSecondsForItToOpen) {
    mc.opensAfter = 2.95;
    EXPECT_TRUE(open().value);
    finish(loop, session.close());
    const double start = seconds();
    mc.opensAfter = 60;
    mc.moves = 0;
    EXPECT_TRUE(open().failedWith(SpaceReorderError(Case::missionControlDidNotOpen)));
    EXPECT_NEAR(seconds() - start, 3.0, 1e-6);
    EXPECT_EQ(mc.moves, 0);
}

TEST_F(MissionControlSessionTest, GivesUpOnABarThatStaysOtherThanExpected) {
    EXPECT_TRUE(open(5).failedWith(SpaceReorderError(Case::spacesBarNotFound)));
    EXPECT_EQ(mc.moves, 9);
    EXPECT_EQ(mc.escapes, 0) << "whoever opened closes";
    finish(loop, session.close());
    mc.expandsInRound = 4;
    EXPECT_TRUE(open().failedWith(SpaceReorderError(Case::spacesBarNotFound)));
    finish(loop, session.close());
    mc.expandsInRound = 1;
    mc.damagedBars = 3;
    EXPECT_TRUE(open().failedWith(SpaceReorderError(Case::spacesBarNotFound))) << "a frame of NaN";
}

TEST_F(MissionControlSessionTest, TakesNoticeWhenItIsClosedWhileHovering) {
    mc.expandsInRound = 4;
    mc.onCall = [&] {
        if (mc.moves == 5) mc.closeByItself();
    };
    EXPECT_TRUE(open().failedWith(SpaceReorderError(Case::missionControlDidNotOpen)));
    EXPECT_EQ(mc.moves, 6);
}

TEST_F(MissionControlSessionTest, ClosesWithAsManyEscapesAsItTakes) {
    open();
    mc.closesAfter = 0;
    mc.pauses.clear();
    finish(loop, session.close());
    EXPECT_EQ(mc.escapes, 1);
    EXPECT_EQ(mc.pauses, std::vector<double>({0.4}));

    open();
    mc.lostEscapes = 1;
    finish(loop, session.close());
    EXPECT_EQ(mc.escapes, 3);
    EXPECT_FALSE(mc.showsNow());

    open();
    mc.lostEscapes = 2;
    const double start = seconds();
    finish(loop, session.close());
    EXPECT_EQ(mc.escapes, 5);
    EXPECT_TRUE(mc.showsNow());
    EXPECT_NEAR(seconds() - start, 2 * 1.5 + 0.4, 1e-6);
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
