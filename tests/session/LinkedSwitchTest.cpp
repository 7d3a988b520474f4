#include "app/AppState.h"
#include "app/menu/DesktopMenuCommands.h"
#include "core/async/Task.h"
#include "core/names/DisplayLink.h"
#include "core/platform/linux/WindowManagerEngine.h"
#include "tests/session/IpcFixture.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/RecordingExecutor.h"

#include <memory>

namespace lumnara::testing {
namespace {

/// i3's own, but for one display, of which it refuses everything.
class RefusingActivator : public SpaceActivator {
public:
    explicit RefusingActivator(std::unique_ptr<SpaceActivator> real) : real_(std::move(real)) {}
    async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) override {
        if (display.uuid == refused)
            throw WindowManagerError(WindowManagerError::Case::refused, "i3", "not there");
        co_return co_await real_->activate(target, display);
    }
    std::shared_ptr<const DisplayID> keepFocusOn(const DisplayID& display) override {
        return real_->keepFocusOn(display);
    }

    std::string refused;

private:
    std::unique_ptr<SpaceActivator> real_;
};

/// The shell without its surfaces on a real i3 with two monitors.
class LinkedSwitchTest : public ::testing::Test {
protected:
    LinkedSwitchTest() {
        auto& activator = at.platform().spaceActivator;
        activator = std::make_unique<RefusingActivator>(std::move(activator));
        settings.displayLinkMode.set(DisplayLinkMode::linked);
        EXPECT_TRUE(at.answers());
        at.platform().windowManagerEngine =
            std::make_unique<WindowManagerEngine>(*activator, *at.platform().spaceProvider);
        state = std::make_unique<AppState>(at.loop, settings, at.platform(), executor, at.folder.path());
        listening =
            state->notices().subscribe([this](const Notice& notice) { notices.push_back(notice.text); });
    }

    /// Shows two workspaces, links them under a name, and goes elsewhere on both.
    void linkAs(const std::string& name, const std::string& onL, const std::string& onR) {
        const std::string left = show("L", onL);
        const std::string right = show("R", onR);
        ASSERT_TRUE(state->catalog().link(left, right));
        state->catalog().rename(desktopOn("L").key, name);
        show("R", "2");
        show("L", "1");
    }
    std::string show(const std::string& output, const std::string& workspace) {
        at.command("focus output " + output + "; workspace " + workspace);
        EXPECT_TRUE(at.runUntil([&] {
            return at.workspaces(output).find(workspace + "* ") != std::string::npos;
        })) << at.workspaces(output);
        state->catalog().refresh();
        return desktopOn(output).spaceKey;
    }
    Desktop desktopOn(const std::string& output) {
        const Desktop* current = state->catalog().currentDesktop(output);
        EXPECT_TRUE(current) << output;
        return current ? *current : Desktop{};
    }
    Desktop named(const std::string& name) {
        for (const Desktop& desktop : state->catalog().desktops())
            if (desktop.displayName() == name) return desktop;
        ADD_FAILURE() << "no desktop " << name;
        return {};
    }
    std::string focusedWorkspace() {
        for (const auto& each : nlohmann::json::parse(at.x().run({"i3-msg", "-t", "get_workspaces"}).text))
            if (each.at("focused")) return each.at("name");
        return {};
    }

    IpcFixture at{IpcWindowManager::i3};
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    RecordingExecutor executor;
    std::unique_ptr<AppState> state;
    std::vector<std::string> notices;
    async::Subscription listening;
};

TEST_F(LinkedSwitchTest, BothScreensGoThereAndTheKeyboardStaysWithTheUser) {
    linkAs("Mail", "3", "4");
    std::vector<std::string> announced;
    const auto announcing = state->announcer().desktopSwitched.subscribe(
        [&](const Desktop& desktop, const auto&) { announced.push_back(desktop.displayName()); });
    std::vector<SwitchSettle::Entry> settled;
    const auto settling = state->linkedSwitching().settled.subscribe(
        [&](const Desktop&, const auto& entries) { settled = entries; });

    at.x().movePointer(1900, 400);
    state->switchTo(named("Mail"));
    EXPECT_TRUE(at.shows("L", "3: Mail* "));
    EXPECT_TRUE(at.shows("R", "4: Mail* "));
    EXPECT_TRUE(at.runUntil([&] { return focusedWorkspace() == "4: Mail"; })) << focusedWorkspace();
    EXPECT_TRUE(at.runUntil([&] { return !settled.empty(); }));
    EXPECT_EQ(settled.size(), 2u);
    EXPECT_TRUE(SwitchSettle::unsettled(settled).empty());
    EXPECT_EQ(announced, std::vector<std::string>{"Mail"}) << "one change is told once";
    EXPECT_TRUE(notices.empty());
}

TEST_F(LinkedSwitchTest, AScreenThatRefusesStopsNoOther) {
    linkAs("Mail", "3", "4");
    at.x().movePointer(1900, 400);
    static_cast<RefusingActivator&>(*at.platform().spaceActivator).refused = "R";
    state->switchTo(named("Mail"));
    ASSERT_TRUE(at.runUntil([&] { return !notices.empty(); }));
    EXPECT_EQ(notices, std::vector<std::string>{"R did not follow: i3 refused a command: not there."});
    EXPECT_TRUE(at.shows("L", "3: Mail* "));
    EXPECT_EQ(at.workspaces("R"), "2* ");

    // A screen that is gone takes its desktop along, and the name goes on working.
    show("L", "1");
    at.x().unplug("R");
    ASSERT_TRUE(at.runUntil([&] { return state->catalog().displays->size() == 1; }));
    state->switchTo(named("Mail"));
    EXPECT_TRUE(at.runUntil([&] { return focusedWorkspace() == "3: Mail"; })) << focusedWorkspace();
    EXPECT_EQ(notices.size(), 1u) << notices.back();
}

TEST_F(LinkedSwitchTest, ALinkOutlivesItsBeingOffButNotItsScreen) {
    linkAs("Mail", "3", "4"); // the one on R is empty, and has no name of its own
    const std::string onR = state->catalog().linkedDesktop(named("Mail").key, "R")->spaceKey;
    const auto isLinked = [&] { return DisplayLink::groupOf(*state->store().file(), onR).has_value(); };
    settings.displayLinkMode.set(DisplayLinkMode::independent);
    show("R", "5");
    show("R", "2");
    EXPECT_TRUE(state->catalog().desktopOfSpace(onR)) << at.workspaces("R");
    settings.displayLinkMode.set(DisplayLinkMode::linked);
    EXPECT_EQ(state->catalog().linkedMembers(named("Mail").key).size(), 2u);

    // A workspace with a window moves to the screen that is left, and its member with it.
    show("R", "4: Mail");
    at.x().openWindow("Letters");
    at.x().unplug("R");
    ASSERT_TRUE(at.runUntil([&] { return state->catalog().displays->size() == 1; }));
    EXPECT_TRUE(state->catalog().desktopOfSpace(onR)) << at.workspaces("L");
    EXPECT_TRUE(isLinked()) << "it may be back in a moment";
    EXPECT_TRUE(at.runUntil([&] { return !isLinked(); }));
    at.x().plug("R");
    ASSERT_TRUE(at.runUntil([&] { return state->catalog().displays->size() == 2; }));
    EXPECT_TRUE(state->catalog().desktopOfSpace(onR));
}

TEST_F(LinkedSwitchTest, MakesTheOtherDesktopOfALink) {
    state->catalog().rename(desktopOn("L").key, "Mail");
    DesktopMenuCommands commands(*state);
    commands.carryOut(LinkRequest::create(desktopOn("L")));
    ASSERT_TRUE(at.runUntil([&] { return !notices.empty(); }));
    EXPECT_EQ(notices.back(), "Displays linked. Choose “Mail” and both screens go there.");
    EXPECT_TRUE(at.shows("L", "1: Mail* ") && at.shows("R", "2* ")) << "nobody was taken anywhere";

    show("L", "5");
    state->switchTo(named("Mail"));
    EXPECT_TRUE(at.shows("L", "1: Mail* ") && at.shows("R", "3: Mail* "));
}

} // namespace
} // namespace lumnara::testing
