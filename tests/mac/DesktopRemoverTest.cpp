#include "core/platform/mac/missioncontrol/DesktopRemover.h"
#include "core/arranging/DesktopRemoveError.h"
#include "tests/mac/MissionControlTest.h"

namespace lumnara {
namespace {

using testing::finish;
using testing::ids;
using Case = DesktopRemoveError::Case;
using Strings = std::vector<std::string>;

constexpr const char* lineUpSentence =
    "Mission Control's thumbnails did not line up with the desktops. Nothing was changed.";

class DesktopRemoverTest : public testing::MissionControlTest {
protected:
    /// Places a full-screen Space, 50, second on the display.
    void addFullscreen() {
        mc.change([](SpaceSnapshot& layout) {
            auto& spaces = layout.displays[0].spaces;
            spaces.insert(spaces.begin() + 1, testing::makeFullscreen(50, "F", std::nullopt));
        });
    }
    testing::Ended<RemoveOutcome> remove(std::vector<std::uint64_t> which) {
        return finish(loop, remover.remove(ids(std::move(which)), {"d1"}, mc));
    }
    void expectStopped(const testing::Ended<RemoveOutcome>& ended, std::vector<std::uint64_t> removed,
                       const char* because) {
        EXPECT_EQ(ended.value, (RemoveOutcome{ids(removed), because}));
        EXPECT_EQ(mc.removed, ids(removed));
        expectLeft();
    }
    void SetUp() override {
        mc.frames["d1"] = mc.frames["D1"]; // displays are found in any case
    }

    DesktopRemover remover{mc};
};

TEST_F(DesktopRemoverTest, RemovesWhatIsAskedForAndNothingElse) {
    addFullscreen();
    Strings said;
    remover.onProgress = [&](const std::string& sentence) { said.push_back(sentence); };
    EXPECT_EQ(remove({4, 1, 4, 3}).value, (RemoveOutcome{ids({4, 1, 3}), std::nullopt}));
    EXPECT_EQ(mc.order("D1"), ids({50, 2}));
    EXPECT_EQ(said, Strings({"Opening Mission Control", "Removing desktops in Mission Control (1/3)",
                             "Removing desktops in Mission Control (2/3)",
                             "Removing desktops in Mission Control (3/3)"}));
    expectLeft();
}

TEST_F(DesktopRemoverTest, SaysLessAboutASingleOne) {
    Strings said;
    remover.onProgress = [&](const std::string& sentence) { said.push_back(sentence); };
    EXPECT_EQ(remove({2}).value, (RemoveOutcome{ids({2}), std::nullopt}));
    EXPECT_EQ(said.back(), "Removing the desktop in Mission Control");
}

TEST_F(DesktopRemoverTest, RefusesBeforeAnythingIsTouched) {
    addFullscreen();
    EXPECT_TRUE(remove({1, 9}).failedWith(DesktopRemoveError(Case::notOnDisplay)));
    EXPECT_TRUE(remove({101}).failedWith(DesktopRemoveError(Case::notOnDisplay)));
    EXPECT_TRUE(remove({1, 50}).failedWith(DesktopRemoveError(Case::notAUserDesktop)));
    EXPECT_TRUE(remove({1, 2, 3, 4}).failedWith(DesktopRemoveError(Case::lastOnDisplay)));
    EXPECT_EQ(remove({}).value, RemoveOutcome());
    mc.rearrangesByUse = true;
    EXPECT_TRUE(remove({9}).failedWith(SpaceReorderError(SpaceReorderError::Case::mruSpacesOn)));
    expectUntouched();
}

TEST_F(DesktopRemoverTest, RemovesNothingWhoseTitleDoesNotAgree) {
    mc.firstNumber = 2;
    expectStopped(remove({2}), {}, lineUpSentence);
    mc.firstNumber = 1;
    for (const char* prefix : {"desktop ", "Desktop  ", "Desktop +", "Desktop", "Desktop 1e", ""}) {
        mc.titlePrefix = prefix;
        expectStopped(remove({2}), {}, lineUpSentence);
    }
    mc.titlePrefix = "Desktop 99999999999";
    expectStopped(remove({2}), {}, lineUpSentence);
}

TEST_F(DesktopRemoverTest, RemovesNothingByALayoutThatIsNotTheBars) {
    remover.onProgress = [&](const std::string& sentence) {
        if (sentence == "Removing desktops in Mission Control (2/2)") mc.readingLag = 0.5;
    };
    expectStopped(remove({1, 3}), {1}, lineUpSentence); // the reading from before the first removal
    mc.readingLag = 0;
    mc.removed.clear();
    int barCall = 0;
    remover.onProgress = [&](const std::string& sentence) {
        if (sentence == "Removing the desktop in Mission Control") barCall = mc.calls + 2;
    };
    mc.onCall = [&] {
        if (mc.calls == barCall)
            mc.change([](SpaceSnapshot& layout) {
                auto& spaces = layout.displays[0].spaces;
                std::swap(spaces[0], spaces[1]);
            });
    };
    expectStopped(remove({2}), {}, lineUpSentence); // another order while the bar was read
}

TEST_F(DesktopRemoverTest, StopsAtARefusalAndKeepsCountOfWhatWent) {
    mc.onCall = [&] { mc.refusedRemovals = mc.removed.size() == 1; };
    expectStopped(remove({1, 2, 3}), {1},
                  "Mission Control did not accept the request to remove that desktop.");
}

TEST_F(DesktopRemoverTest, BelievesOnlyWhatItReads) {
    mc.ignoredRemovals = 1;
    expectStopped(remove({2, 3}), {}, "Mission Control did not remove the desktop.");
}

TEST_F(DesktopRemoverTest, ADesktopThatMovedToAnotherDisplayIsNotRemoved) {
    mc.ignoredRemovals = 1;
    mc.onCall = [&] {
        if (mc.ignoredRemovals > 0 || mc.layout().displays[0].spaces.size() < 4) return;
        mc.change([](SpaceSnapshot& layout) {
            auto& from = layout.displays[0].spaces;
            layout.displays[1].spaces.push_back(from[1]);
            from.erase(from.begin() + 1);
        });
    };
    expectStopped(remove({2}), {}, "Mission Control did not remove the desktop.");
}

TEST_F(DesktopRemoverTest, ADisplayThatVanishedHasLostNoDesktop) {
    mc.onCall = [&] {
        if (!mc.removed.empty() && mc.layout().displays.size() == 2)
            mc.change([](SpaceSnapshot& layout) { layout.displays.erase(layout.displays.begin()); });
    };
    const auto ended = remove({2});
    EXPECT_EQ(ended.value, (RemoveOutcome{{}, "Mission Control did not remove the desktop."}));
    expectLeft();
}

TEST_F(DesktopRemoverTest, StopsWhenTheDesktopOrTheBarHasGone) {
    remover.onProgress = [&](const std::string& sentence) {
        if (sentence == "Removing desktops in Mission Control (2/2)")
            mc.change([](SpaceSnapshot& layout) {
                layout.displays[0].spaces.erase(layout.displays[0].spaces.begin() + 1);
            });
    };
    expectStopped(remove({1, 3}), {1}, "That desktop is not on this display any more.");
    mc.removed.clear();
    remover.onProgress = [&](const std::string& sentence) {
        if (sentence == "Removing the desktop in Mission Control") mc.collapse();
    };
    expectStopped(remove({2}), {}, "Mission Control closed or stopped showing the desktop thumbnails.");
}

} // namespace
} // namespace lumnara
