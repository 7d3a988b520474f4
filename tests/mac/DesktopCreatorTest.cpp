#include "core/platform/mac/missioncontrol/DesktopCreator.h"
#include "core/platform/mac/missioncontrol/MissionControlArranger.h"
#include "tests/mac/MissionControlTest.h"
#include "tests/support/LogLines.h"

namespace lumnara {
namespace {

using testing::finish;
using testing::ids;
using Case = DesktopCreator::Failure::Case;
using Strings = std::vector<std::string>;

class DesktopCreatorTest : public testing::MissionControlTest {
protected:
    testing::Ended<bool> create(int existingCount = 4) {
        return finish(loop, creator.create(mc.frames["D1"], mc.frames["D1"], existingCount));
    }

    testing::LogLines lines;
    DesktopCreator creator{mc, mc};
    MissionControlArranger arranger{mc, mc, mc};
};

TEST_F(DesktopCreatorTest, PressesTheButtonOfTheDisplay) {
    EXPECT_TRUE(create(15).value);
    EXPECT_EQ(mc.added, ids({1001}));
    EXPECT_EQ(mc.order("D1"), ids({1, 2, 3, 4, 1001}));
    EXPECT_NEAR(seconds(), 0.7 + 0.6 + 0.6, 1e-6);
    EXPECT_EQ(mc.escapes, 1);
    EXPECT_EQ(lines.take(),
              Strings({"Lumnara new desktop: 15 on display, opening Mission Control",
                       "Lumnara new desktop: add button pressed for display at {{0, 0}, {1440, 900}}"}));
    expectLeft();
}

TEST_F(DesktopCreatorTest, FindsTheButtonByItsDescription) {
    mc.addButtonHasIdentifier = false;
    EXPECT_TRUE(finish(loop, creator.create({1440, 0, 1440, 900}, std::nullopt, 2)).value);
    EXPECT_EQ(mc.order("D2"), ids({101, 102, 1001}));
    EXPECT_EQ(lines.take(),
              Strings({"Lumnara new desktop: 2 on display, opening Mission Control",
                       "Lumnara new desktop: no mc.spaces.add for the display, pressing the first add button",
                       "Lumnara new desktop: add button pressed for display at unknown"}));
    expectLeft();
}

TEST_F(DesktopCreatorTest, LeavesWhenThereIsNoButton) {
    mc.addButtonShows = false;
    const auto ended = create();
    EXPECT_TRUE(ended.failedWith(DesktopCreator::Failure(Case::buttonMissing)));
    EXPECT_EQ(sentenceOf(ended.error),
              "Mission Control did not offer an Add Desktop button. Add one from Mission "
              "Control, then reopen the Board.");
    EXPECT_EQ(lines.take().back(),
              "Lumnara new desktop: add button not found for display at {{0, 0}, {1440, 900}}");
    expectLeft();
}

TEST_F(DesktopCreatorTest, RefusesBeforeAnythingIsTouched) {
    EXPECT_EQ(sentenceOf(create(16).error), "macOS allows 16 desktops per display, and this display has 16.");
    mc.trusted = false;
    EXPECT_EQ(sentenceOf(create(16).error), "Adding a desktop needs Accessibility permission for Lumnara.");
    EXPECT_EQ(lines.take(), Strings());
    expectUntouched();
}

TEST_F(DesktopCreatorTest, TheArrangerTellsWhichDesktopIsNew) {
    EXPECT_EQ(finish(loop, arranger.create({"D2"})).value, ids({1001}));
    mc.readingLag = 30;
    EXPECT_EQ(finish(loop, arranger.create({"D2"})).value, ids({})) << "none that can be seen";
    mc.readingLag = 0;
    mc.failingReadings = 1;
    EXPECT_TRUE(finish(loop, arranger.create({"D2"})).error);
    const SpaceReorderError missing(SpaceReorderError::Case::displayNotInSnapshot);
    EXPECT_TRUE(finish(loop, arranger.create({"D3"})).failedWith(missing));
    mc.frames.erase("D2");
    const SpaceReorderError unplugged(SpaceReorderError::Case::displayNotAttached);
    EXPECT_TRUE(finish(loop, arranger.create({"D2"})).failedWith(unplugged));
}

TEST_F(DesktopCreatorTest, TheArrangerPassesTheRestOn) {
    Strings said;
    arranger.onProgress = [&](const std::string& sentence) { said.push_back(sentence); };
    EXPECT_TRUE(finish(loop, arranger.reorder({"D1"}, ids({4}))).value->matchesDesired);
    EXPECT_EQ(finish(loop, arranger.remove(ids({4}), {"D1"})).value->removedIDs, ids({4}));
    EXPECT_EQ(said, Strings({"Opening Mission Control", "Moving desktops in Mission Control (1 of 1)",
                             "Opening Mission Control", "Removing the desktop in Mission Control"}));
    EXPECT_EQ(arranger.desktopsPerDisplay(), 16);
}

} // namespace
} // namespace lumnara
