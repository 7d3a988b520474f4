#include "core/platform/mac/missioncontrol/SpaceReorderer.h"
#include "core/model/SpaceKitError.h"
#include "tests/mac/MissionControlTest.h"

#include <limits>

namespace lumnara {
namespace {

using testing::finish;
using testing::ids;
using Case = SpaceReorderError::Case;
using Strings = std::vector<std::string>;

class SpaceReordererTest : public testing::MissionControlTest {
protected:
    testing::Ended<ReorderOutcome> reorder(std::vector<std::uint64_t> desired, const char* display = "D1") {
        return finish(loop, reorderer.reorder({display}, ids(std::move(desired)), mc));
    }
    /// The call of the n-th drag event is about to come.
    void atDrag(int n, std::function<void()> happens) {
        mc.onCall = [this, n, happens = std::move(happens)] {
            if (mc.drags == n - 1) happens();
        };
    }
    void expectStopped(const testing::Ended<ReorderOutcome>& ended, int performed,
                       const std::string& because) {
        ASSERT_TRUE(ended.value);
        EXPECT_EQ(ended.value->performed, performed);
        EXPECT_EQ(ended.value->stoppedBecause, because);
        EXPECT_FALSE(ended.value->matchesDesired);
        EXPECT_EQ(ended.value->finalOrder, mc.order("D1"));
        expectLeft();
    }

    SpaceReorderer reorderer{mc};
};

TEST_F(SpaceReordererTest, DragsEachDesktopToItsPlace) {
    Strings said;
    reorderer.onProgress = [&](const std::string& sentence) { said.push_back(sentence); };
    const auto ended = reorder({4, 3, 2, 1});
    ASSERT_TRUE(ended.value);
    EXPECT_EQ(*ended.value, (ReorderOutcome{{{2, 3}, {1, 3}, {0, 3}}, 3, ids({4, 3, 2, 1}), true, {}}));
    EXPECT_EQ(mc.order("D1"), ids({4, 3, 2, 1}));
    EXPECT_EQ(said, Strings({"Opening Mission Control", "Moving desktops in Mission Control (1 of 3)",
                             "Moving desktops in Mission Control (2 of 3)",
                             "Moving desktops in Mission Control (3 of 3)"}));
    expectLeft();
}

TEST_F(SpaceReordererTest, OneMoveTakesItsTime) {
    mc.opensAfter = 0;
    mc.closesAfter = 0;
    EXPECT_TRUE(reorder({2, 3, 4, 1}).value->matchesDesired);
    EXPECT_EQ(mc.drags, 35);
    EXPECT_NEAR(seconds(), 0.5 + 0.95 + 0.1 + 0.35 + 35 * 0.016 + 0.15 + 0.3 + 0.4, 1e-6);
}

TEST_F(SpaceReordererTest, OpensNothingForAnOrderThatStands) {
    const auto ended = reorder({1, 9, 2, 1});
    EXPECT_EQ(ended.value, (ReorderOutcome{{}, 0, ids({1, 2, 3, 4}), true, {}}));
    expectUntouched();
}

TEST_F(SpaceReordererTest, WorksOnTheSecondDisplayToo) {
    EXPECT_TRUE(reorder({102, 101}, "D2").value->matchesDesired);
    EXPECT_EQ(mc.order("D2"), ids({102, 101}));
    EXPECT_EQ(mc.order("D1"), ids({1, 2, 3, 4}));
}

TEST_F(SpaceReordererTest, TellsTheFirstThingThatStandsAgainstIt) {
    const SwitchError locked(SwitchError::Case::screenLocked);
    const Rect frame = mc.frames["D1"];
    mc.failingReadings = 1;
    mc.frames.erase("D1");
    mc.open();
    loop.advance(1);
    mc.opens = 0;
    mc.blocked = locked;
    mc.rearrangesByUse = true;
    mc.trusted = false;
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::accessibilityNotTrusted)));
    mc.trusted = true;
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::mruSpacesOn)));
    mc.rearrangesByUse = false;
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError::session(locked)));
    mc.blocked.reset();
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::missionControlOpen)));
    mc.closeByItself();
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::displayNotAttached)));
    mc.frames["D1"] = {0, 0, std::numeric_limits<double>::quiet_NaN(), 900};
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::displayNotAttached)));
    mc.frames["D1"] = frame;
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceKitError::enumerationFailed()));
    mc.frames["gone"] = frame;
    EXPECT_TRUE(reorder({2, 1}, "gone").failedWith(SpaceReorderError(Case::displayNotInSnapshot)));
    mc.change([](SpaceSnapshot& layout) { layout.displays[0].spaces.clear(); });
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::displayNotInSnapshot)));
    expectUntouched();
}

TEST_F(SpaceReordererTest, LeavesAgainWhenItDoesNotGetIn) {
    mc.expandsInRound = 4;
    EXPECT_TRUE(reorder({2, 1}).failedWith(SpaceReorderError(Case::spacesBarNotFound)));
    EXPECT_EQ(mc.presses, 0);
    expectLeft();
}

TEST_F(SpaceReordererTest, StopsAtTheFirstMoveThatDidNotComeOut) {
    mc.readingLag = 0.5;
    expectStopped(reorder({2, 1, 4, 3}), 0, "Mission Control did not move desktop 1 to position 2.");
}

TEST_F(SpaceReordererTest, KeepsWhatWasMovedBeforeADropWasLost) {
    mc.onCall = [&] { mc.lostDrops = static_cast<int>(mc.dropped.size()); };
    expectStopped(reorder({2, 1, 4, 3}), 1, "Mission Control did not move desktop 3 to position 4.");
    EXPECT_EQ(mc.order("D1"), ids({2, 1, 3, 4}));
}

TEST_F(SpaceReordererTest, ReleasesOnceWhenTheBarVanishesAfterTheLift) {
    atDrag(5, [this] { mc.closeByItself(); });
    expectStopped(reorder({2, 3, 4, 1}), 0, "Mission Control closed while a desktop was being moved.");
    EXPECT_EQ(mc.releases, 1);
    EXPECT_EQ(mc.drags, 5);
}

TEST_F(SpaceReordererTest, PressesNothingOnABarThatIsNotTheOneExpected) {
    mc.onCall = [&] {
        if (mc.drags == 35) mc.collapse(); // between the first move and the second
    };
    expectStopped(reorder({2, 1, 4, 3}), 0, "Mission Control did not move desktop 1 to position 2.");
    mc.onCall = {};
    reorderer.onProgress = [&](const std::string& sentence) {
        if (sentence == "Moving desktops in Mission Control (2 of 2)") mc.collapse();
    };
    mc.presses = mc.releases = 0;
    expectStopped(reorder({2, 1, 4, 3}), 1,
                  "Mission Control closed or stopped showing the desktop thumbnails.");
    EXPECT_EQ(mc.presses, 1);
}

TEST_F(SpaceReordererTest, AimsAgainAtThumbnailsThatMadeRoom) {
    mc.shift = 110;
    mc.shiftAtDrag = 20;
    EXPECT_TRUE(reorder({2, 3, 1, 4}).value->matchesDesired);
    EXPECT_EQ(mc.drags, 45);
    mc.shift = 4;
    EXPECT_TRUE(reorder({1, 2, 3, 4}).value->matchesDesired);
    EXPECT_EQ(mc.drags, 80) << "four points are none";
    mc.shift = -110;
    EXPECT_TRUE(reorder({4, 1, 2, 3}).value->matchesDesired);
}

TEST_F(SpaceReordererTest, TellsTheLastKnownOrderWhenTheEndCannotBeRead) {
    mc.onCall = [&] { mc.failingReadings = mc.warped.empty() ? 0 : 1; };
    const auto ended = reorder({2, 1});
    ASSERT_TRUE(ended.value);
    EXPECT_EQ(ended.value->finalOrder, ids({2, 1, 3, 4}));
    EXPECT_TRUE(ended.value->matchesDesired);
}

} // namespace
} // namespace lumnara
