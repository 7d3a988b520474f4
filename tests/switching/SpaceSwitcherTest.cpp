#include "core/switching/SpaceSwitcher.h"
#include "core/async/Task.h"

#include "tests/switching/SwitchingTest.h"

#include <map>

namespace lumnara {
namespace {

using testing::desktop;
using testing::finish;
using testing::Outcome;
using testing::ScriptedProvider;
using testing::twoDisplays;
using Case = SwitchError::Case;
using Keys = std::vector<std::string>;

/// Lands, or throws what it is told to.
class ScriptedEngine : public HelperWindowSwitching {
public:
    explicit ScriptedEngine(EngineKind kind, std::exception_ptr failure = {})
        : failure_(failure),
          kind_(kind) {}

    EngineKind kind() const override { return kind_; }
    async::Task<SwitchResult> switchTo(const Space& target, const DisplayID& display,
                                       const SpaceSnapshot&) override {
        calls.push_back(target.id.text() + "@" + display.uuid);
        co_await async::sleepFor(0.1);
        if (failure_) std::rethrow_exception(failure_);
        co_return SwitchResult{true, kind_, 1, 0.1};
    }
    void warm(const SpaceSnapshot&) override { calls.push_back("warm"); }
    void pruneWindows(const SpaceSnapshot&) override { calls.push_back("prune"); }

    std::vector<std::string> calls;

private:
    std::exception_ptr failure_;
    EngineKind kind_;
};

class SpaceSwitcherTest : public ::testing::Test {
protected:
    SpaceSwitcherTest() {
        switcher.onLanded = [this](const Space& space, const DisplayID& display, const SwitchResult&) {
            landed.push_back(space.id.text() + "@" + display.uuid);
        };
    }
    static ScriptedEngine failing(EngineKind kind, const SwitchError& error) {
        return ScriptedEngine(kind, std::make_exception_ptr(error));
    }
    Outcome switchTo(std::uint64_t space, const char* display) {
        return finish(loop, switcher.switchTo(desktop(space), {display}, std::nullopt));
    }

    async::TestLoop loop;
    ScriptedProvider provider{twoDisplays()};
    SpaceSwitcher switcher{provider};
    ScriptedEngine dock{EngineKind::dockSwipe};
    ScriptedEngine helper{EngineKind::helperWindow};
    std::vector<std::string> landed;
};

TEST_F(SpaceSwitcherTest, TheSettingsChooseTheChainAndAnOverrideReplacesIt) {
    switcher.dockSwipe = &dock;
    switcher.helperWindow = &helper;
    EXPECT_EQ(switchTo(2, "D1").result->engine, EngineKind::dockSwipe);
    switcher.settings.instantSwitching = false;
    EXPECT_EQ(switchTo(3, "D1").result->engine, EngineKind::helperWindow);
    EXPECT_EQ(dock.calls.size(), 1u);
    EXPECT_EQ(helper.calls, Keys{"3@D1"});

    ScriptedEngine own(EngineKind::windowManager);
    switcher.engineOverride = {&own};
    EXPECT_EQ(switchTo(2, "D1").result->engine, EngineKind::windowManager);
    switcher.engineOverride.emplace();
    landed.clear();
    EXPECT_TRUE(switchTo(3, "D1").failedWith(Case::engineUnavailable));
    EXPECT_TRUE(landed.empty());
    EXPECT_EQ(switcher.history.current("D1"), "U2");
}

TEST_F(SpaceSwitcherTest, WithoutThePlatformsEnginesThereIsNone) {
    EXPECT_TRUE(switchTo(2, "D1").failedWith(Case::engineUnavailable));
    switcher.helperWindow = &helper; // instant switching falls to what is there
    EXPECT_EQ(switchTo(2, "D1").result->engine, EngineKind::helperWindow);
}

TEST_F(SpaceSwitcherTest, FailuresGoToTheNextEngineAndTheLastOneSurfaces) {
    ScriptedEngine exhausted = failing(EngineKind::dockSwipe, SwitchError::notLanded(3));
    ScriptedEngine foreign(EngineKind::dockSwipe, std::make_exception_ptr(std::runtime_error("foreign")));
    ScriptedEngine unavailable = failing(EngineKind::helperWindow, SwitchError(Case::engineUnavailable));

    switcher.engineOverride = {&exhausted, &helper};
    EXPECT_EQ(switchTo(2, "D1").result->engine, EngineKind::helperWindow);
    EXPECT_EQ(switcher.history.entries("D1"), Keys{"U2"});
    EXPECT_EQ(landed, Keys{"2@D1"});

    switcher.engineOverride = {&foreign, &unavailable};
    EXPECT_TRUE(switchTo(3, "D1").failedWith(Case::engineUnavailable));
    switcher.engineOverride = {&unavailable, &foreign};
    EXPECT_TRUE(switchTo(3, "D1").failedWithA<std::runtime_error>());
    switcher.engineOverride = {&unavailable, &exhausted};
    EXPECT_EQ(switchTo(3, "D1").switchError(), SwitchError::notLanded(3));
    EXPECT_EQ(switcher.history.entries("D1"), Keys{"U2"});
}

TEST_F(SpaceSwitcherTest, SomeFailuresEndTheChainAtOnce) {
    for (const Case which : {Case::alreadyThere, Case::targetNotInSnapshot}) {
        ScriptedEngine first = failing(EngineKind::dockSwipe, SwitchError(which));
        switcher.engineOverride = {&first, &helper};
        EXPECT_TRUE(switchTo(2, "D1").failedWith(which));
    }
    EXPECT_TRUE(helper.calls.empty());

    // A cancelled switch doesn't fall to the next engine either.
    switcher.engineOverride = {&dock, &helper};
    Outcome outcome;
    auto handle = async::spawn(loop, testing::noteEnd(switcher.switchTo(desktop(2), {"D1"}, {}), outcome));
    loop.advance(0.05);
    handle.cancel();
    loop.runUntilDone();
    EXPECT_TRUE(outcome.failedWithA<async::Cancelled>());
    EXPECT_TRUE(helper.calls.empty());
    EXPECT_TRUE(landed.empty());
}

TEST_F(SpaceSwitcherTest, ABlockingReasonComesBeforeReadingsAndEngines) {
    switcher.engineOverride = {&dock};
    switcher.blockingReason = [] { return std::optional(SwitchError(Case::screenLocked)); };
    EXPECT_TRUE(switchTo(2, "D1").failedWith(Case::screenLocked));
    EXPECT_EQ(provider.readings, 0);
    EXPECT_TRUE(dock.calls.empty());
    // Only on the way by key the desktop is looked up first.
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("unknown")).failedWith(Case::targetNotInSnapshot));
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("U2")).failedWith(Case::screenLocked));
    switcher.blockingReason = [] { return std::optional<SwitchError>(); };
    EXPECT_TRUE(switchTo(2, "D1").result);
}

TEST_F(SpaceSwitcherTest, GoesToADesktopByItsKeyAndPassesTheProvidersFailureOn) {
    switcher.engineOverride = {&dock};
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("primary:d1")).result);
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("U5")).result);
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("unkeyed:3")).result);
    EXPECT_EQ(dock.calls, (Keys{"1@D1", "5@D2", "3@D1"}));
    EXPECT_EQ(provider.readings, 3) << "one reading a switch";
    EXPECT_EQ(switcher.history.entries("D1"), (Keys{"primary:D1", "U3"}));

    provider.failure = std::make_exception_ptr(std::runtime_error("away"));
    EXPECT_TRUE(finish(loop, switcher.switchToDesktop("U2")).failedWithA<std::runtime_error>());
}

TEST_F(SpaceSwitcherTest, GoesBackAndForthOnTheDisplayAskedForOrUnderThePointer) {
    switcher.engineOverride = {&dock};
    EXPECT_TRUE(finish(loop, switcher.switchBack()).failedWith(Case::targetNotInSnapshot));
    switcher.observe(provider.current);
    EXPECT_TRUE(finish(loop, switcher.switchBack()).failedWith(Case::targetNotInSnapshot)) << "one entry";

    for (const char* key : {"U2", "U5"}) finish(loop, switcher.switchToDesktop(key));
    dock.calls.clear();
    provider.cursor = DisplayID{"d2"}; // as a screen spells it
    finish(loop, switcher.switchBack());
    finish(loop, switcher.switchBack());
    finish(loop, switcher.switchBack(DisplayID{"D1"}));
    provider.cursor.reset();
    finish(loop, switcher.switchBack());
    EXPECT_EQ(dock.calls, (Keys{"4@D2", "5@D2", "1@D1", "2@D1"}));

    switcher.history.record("gone", "D1");
    switcher.history.record("U3", "D1");
    EXPECT_TRUE(finish(loop, switcher.switchBack()).failedWith(Case::targetNotInSnapshot));
    provider.current.displays.clear();
    EXPECT_TRUE(finish(loop, switcher.switchBack()).failedWith(Case::targetNotInSnapshot));
}

TEST_F(SpaceSwitcherTest, ObservingRecordsSwitchesMadeElsewhere) {
    switcher.observe(provider.current);
    provider.show("D1", 3);
    provider.show("D2", 99); // not in its own list
    switcher.observe(provider.current);
    switcher.observe(provider.current);
    EXPECT_EQ(switcher.history.entries("D1"), (Keys{"primary:D1", "U3"}));
    EXPECT_EQ(switcher.history.entries("D2"), Keys{"U4"});

    Space nameless = desktop(7);
    nameless.uuid.clear();
    provider.current.displays[0].spaces.push_back(nameless);
    provider.show("D1", 7);
    switcher.observe(provider.current);
    EXPECT_EQ(switcher.history.current("D1"), "unkeyed:7");
}

TEST_F(SpaceSwitcherTest, ObservingKeepsTheHelperWindowsInStepWithTheSpaces) {
    switcher.helperWindow = &helper;
    switcher.observe(provider.current);
    EXPECT_EQ(helper.calls, Keys{"prune"}) << "the gesture is tried first, and nobody wants them warm";
    switcher.keepHelperWindowsWarm = true;
    switcher.observe(provider.current);
    switcher.keepHelperWindowsWarm = false;
    switcher.settings.instantSwitching = false;
    switcher.observe(provider.current);
    EXPECT_EQ(helper.calls, (Keys{"prune", "prune", "warm", "prune", "warm"}));
}

TEST_F(SpaceSwitcherTest, TheHelperWindowAloneSwitchesPastTheChain) {
    const auto go = [&](const char* key, std::function<SpaceSnapshot()> rereading) {
        return finish(loop, switcher.switchWithHelperWindow(key, std::move(rereading)));
    };
    const auto asIs = [&] { return provider.current; };
    EXPECT_TRUE(go("U2", asIs).failedWith(Case::engineUnavailable));
    switcher.dockSwipe = &dock;
    switcher.helperWindow = &helper;
    switcher.engineOverride = {&dock};
    EXPECT_TRUE(go("unknown", asIs).failedWith(Case::targetNotInSnapshot));
    EXPECT_EQ(go("U2", asIs).result->engine, EngineKind::helperWindow);
    EXPECT_EQ(helper.calls, Keys{"2@D1"});
    EXPECT_TRUE(dock.calls.empty());

    // The key is that of the later reading, and there may be none.
    go("U3", [&] {
        SpaceSnapshot renamed = provider.current;
        renamed.displays[0].spaces[2].uuid = "new";
        return renamed;
    });
    go("U2", [] { return SpaceSnapshot(); });
    go("U2", [&] {
        SpaceSnapshot nameless = provider.current;
        nameless.displays[0].spaces[1].uuid.clear();
        return nameless;
    });
    EXPECT_EQ(switcher.history.entries("D1"), (Keys{"U2", "new"}));
    EXPECT_EQ(landed, (Keys{"2@D1", "3@D1", "2@D1", "2@D1"}));

    switcher.blockingReason = [] { return std::optional(SwitchError(Case::missionControlActive)); };
    EXPECT_TRUE(go("U2", asIs).failedWith(Case::missionControlActive));
    EXPECT_TRUE(go("unknown", asIs).failedWith(Case::targetNotInSnapshot));
}

TEST(SwitchResult, DescribesItselfInWholeMilliseconds) {
    const SwitchResult result{true, EngineKind::dockSwipe, 1, 0.1809};
    EXPECT_EQ(result.description(), "dockSwipe landed=true attempts=1 elapsed=180ms");
    const SwitchResult slow{false, EngineKind::windowManager, 2, 1.5};
    EXPECT_EQ(slow.description(), "windowManager landed=false attempts=2 elapsed=1500ms");
}

} // namespace
} // namespace lumnara
