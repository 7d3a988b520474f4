#include "tests/session/ArrangerSession.h"

namespace lumnara::testing {
namespace {

/// What is peculiar to window managers that forget empty workspaces and sort by number.
class IpcArrangerTest : public ::testing::TestWithParam<IpcWindowManager> {
protected:
    SpaceID create(const std::string& output) {
        const auto made = arranged(at.loop, at.platform().arranger->create({output}));
        EXPECT_EQ(made.value.size(), 1U) << made.failure;
        return made.value.empty() ? SpaceID{} : made.value.front();
    }
    ReorderOutcome reorder(const std::string& output, const std::vector<SpaceID>& wish) {
        return arranged(at.loop, at.platform().arranger->reorder({output}, wish)).value;
    }
    RemoveOutcome remove(const std::string& output, const std::vector<SpaceID>& ids) {
        return arranged(at.loop, at.platform().arranger->remove(ids, {output})).value;
    }
    std::string uuid(const std::string& output, SpaceID id) {
        for (const Space& space : at.desktops(output).spaces)
            if (space.id == id) return space.uuid;
        return {};
    }
    SpaceID shownOn(const std::string& output) { return at.desktops(output).currentID; }
    std::vector<SpaceID> order(const std::string& output) {
        std::vector<SpaceID> ids;
        for (const Space& space : at.desktops(output).spaces) ids.push_back(space.id);
        return ids;
    }

    void openWindow() {
        if (GetParam() == IpcWindowManager::i3) {
            at.x().openWindow("window");
            return;
        }
        // Not by sway, which may be a user who can't enter the folder that it was started in.
        windows.push_back(at.sway().start({"foot", "sleep", "600"}));
        EXPECT_TRUE(at.runUntil([&] {
            const auto app = at.platform().workspace->frontmostApplication();
            return app && app->name == "foot";
        }));
    }

    IpcFixture at{GetParam(), "workspace_auto_back_and_forth yes\n"};
    std::string left = at.left();
    std::string right = at.right();
    std::vector<std::unique_ptr<Child>> windows;
};

INSTANTIATE_TEST_SUITE_P(Ipc, IpcArrangerTest,
                         ::testing::Values(IpcWindowManager::i3, IpcWindowManager::sway),
                         [](const auto& info) {
                             return std::string(info.param == IpcWindowManager::i3 ? "i3" : "sway");
                         });

TEST_P(IpcArrangerTest, AddsADesktopThatIsMadeWhenOneGoesThere) {
    at.command("focus output " + left);
    const SpaceID two = shownOn(right);
    const SpaceID three = create(right);
    EXPECT_EQ(order(right), (std::vector{two, three}));
    EXPECT_EQ(at.workspaces(right), "2* ");
    EXPECT_EQ(at.provider().menuBarDisplay(), DisplayID{left});

    const std::string key = uuid(right, three);
    EXPECT_EQ(at.switchTo(key), std::nullopt);
    EXPECT_TRUE(at.shows(right, "3* ") && at.shows(left, "1* "));
    at.command("workspace 2");
    ASSERT_TRUE(at.shows(right, "2* "));
    at.restartLumnara();
    ASSERT_TRUE(at.answers());
    EXPECT_EQ(uuid(right, three), key);
}

TEST_P(IpcArrangerTest, HandsOutTheNumbersAnew) {
    const SpaceID two = shownOn(right);
    const SpaceID three = create(right);
    const SpaceID four = create(right);
    EXPECT_EQ(order(right), (std::vector{two, three, four}));
    EXPECT_TRUE(reorder(right, {four, two, three}).matchesDesired);
    EXPECT_EQ(order(right), (std::vector{four, two, three}));
    EXPECT_EQ(shownOn(right), two);
    EXPECT_TRUE(at.shows(right, "3* "));
    EXPECT_EQ(at.switchTo(uuid(right, four)), std::nullopt);
    EXPECT_TRUE(at.shows(right, "2* "));
    EXPECT_EQ(shownOn(right), four);
}

TEST_P(IpcArrangerTest, LetsTheNeighbourTakeTheWorkspaceWhereItHasNone) {
    at.command("focus output " + left);
    const SpaceID two = shownOn(right);
    const SpaceID three = create(right);
    EXPECT_EQ(remove(right, {two}).removedIDs, std::vector{two});
    EXPECT_EQ(order(right), std::vector{three});
    EXPECT_EQ(shownOn(right), three);
    EXPECT_TRUE(at.shows(right, "3* ") && at.shows(left, "1* "));
    EXPECT_EQ(at.provider().menuBarDisplay(), DisplayID{left});
}

TEST_P(IpcArrangerTest, SaysWhichOrderItCantKeep) {
    const SpaceID one = shownOn(left);
    at.command("focus output " + left + "; rename workspace to web");
    ASSERT_TRUE(at.shows(left, "web* "));
    const SpaceID numbered = create(left);
    EXPECT_EQ(order(left), (std::vector{numbered, one}));
    const ReorderOutcome outcome = reorder(left, {one, numbered});
    EXPECT_FALSE(outcome.matchesDesired);
    EXPECT_EQ(outcome.performed, 0);
    EXPECT_EQ(outcome.finalOrder, (std::vector{numbered, one}));
    EXPECT_EQ(outcome.stoppedBecause,
              at.platform().name + " sorts desktops by the number that their names begin with, and puts "
                                   "those without one behind the others.");
    EXPECT_TRUE(at.shows(left, "web* "));
}

TEST_P(IpcArrangerTest, OrdersDesktopsWithoutNumbers) {
    std::vector<SpaceID> ids;
    for (const std::string name : {"web", "mail", "chat"}) {
        at.command("focus output " + left + "; workspace " + name);
        openWindow();
        ids.push_back(shownOn(left));
    }
    const std::string before = at.workspaces(left);
    ASSERT_TRUE(before == "web mail chat* ") << before;
    EXPECT_TRUE(reorder(left, {ids[2], ids[0], ids[1]}).matchesDesired);
    EXPECT_TRUE(at.shows(left, "chat* web mail "));
    const ReorderOutcome outcome = reorder(left, {ids[0], ids[1], ids[2]});
    EXPECT_TRUE(outcome.matchesDesired) << outcome.stoppedBecause.value_or("");
    EXPECT_EQ(outcome.performed, 1);
    EXPECT_TRUE(at.shows(left, "web mail chat* "));
}

class I3ArrangerTest : public ::testing::Test {
protected:
    IpcFixture at{IpcWindowManager::i3};
};

TEST_F(I3ArrangerTest, TakesWhatIsSplitOrFloatsAlongAndLeavesTheKeyboardWhereItIs) {
    at.command("focus output L; workspace 5");
    at.x().openWindow("kept");
    at.command("focus output L; workspace 6");
    at.x().openWindow("one");
    at.command("split v");
    at.x().openWindow("two");
    at.x().openWindow("floating");
    at.command("floating enable; focus output R");
    const SpaceID six = at.desktops("L").currentID;
    ASSERT_EQ(at.desktops("L").spaces.back().id, six);
    EXPECT_EQ(arranged(at.loop, at.platform().arranger->remove({six}, {"L"})).value.removedIDs,
              std::vector{six});
    EXPECT_TRUE(at.shows("L", "5* "));
    EXPECT_EQ(at.provider().menuBarDisplay(), DisplayID{"R"});
    at.command("focus output L");
    for (const std::string title : {"kept", "one", "two", "floating"})
        EXPECT_TRUE(at.runUntil([&] {
            at.command("[title=\"^" + title + "$\" workspace=\"^5$\"] mark --replace " + title);
            return at.hasMark(title);
        })) << title;
}

} // namespace
} // namespace lumnara::testing
