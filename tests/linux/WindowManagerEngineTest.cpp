#include "core/platform/linux/WindowManagerEngine.h"
#include "core/async/Task.h"

#include "tests/switching/SwitchingTest.h"

#include <deque>

namespace lumnara {
namespace {

using testing::desktop;
using testing::finish;
using testing::noteEnd;
using testing::Outcome;
using testing::ScriptedProvider;
using testing::twoDisplays;
using Case = SwitchError::Case;

class Refusal : public Failure {
public:
    Refusal() : Failure("refused") {}
};

/// A window manager that does as the next step says, and obeys at once when there is none. A refusal is
/// only an answer: it may obey all the same.
class ScriptedActivator : public SpaceActivator {
public:
    struct Step {
        double answersAfter = 0;
        bool obeys = true;
        bool refuses = false;
        std::optional<SpaceID> tells{};
    };
    explicit ScriptedActivator(ScriptedProvider& provider) : provider_(provider) {}

    async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) override {
        ++asked;
        const Step step = steps.empty() ? Step() : steps.front();
        if (!steps.empty()) steps.pop_front();
        if (step.obeys) provider_.show(display.uuid, target.id.raw);
        if (step.answersAfter > 0) co_await async::sleepUnlessCancelled(step.answersAfter);
        if (step.refuses) throw Refusal();
        co_return step.tells;
    }

    std::deque<Step> steps;
    int asked = 0;

private:
    ScriptedProvider& provider_;
};

class WindowManagerEngineTest : public ::testing::Test {
protected:
    WindowManagerEngineTest() {
        provider.probe = [this](const DisplayID& display) -> std::optional<SpaceID> {
            ++probed;
            const DisplaySpaces* shown = provider.current.spacesOnDisplay(display.uuid);
            if (shown == nullptr) return std::nullopt;
            return shown->currentID;
        };
    }
    Outcome switchTo(std::uint64_t space) {
        const Space target = desktop(space);
        const DisplayID display{"D1"};
        const SpaceSnapshot snapshot = twoDisplays(loop.date());
        return finish(loop, engine.switchTo(target, display, snapshot));
    }

    async::TestLoop loop;
    ScriptedProvider provider{twoDisplays()};
    ScriptedActivator activator{provider};
    WindowManagerEngine engine{activator, provider};
    int probed = 0;
};

TEST_F(WindowManagerEngineTest, LandsWithinTheTurnOfTheAnswerByOneRead) {
    const Space target = desktop(2);
    const DisplayID display{"D1"};
    const SpaceSnapshot snapshot = twoDisplays(loop.date());
    Outcome outcome;
    const auto handle = async::spawn(loop, noteEnd(engine.switchTo(target, display, snapshot), outcome));
    loop.turn();
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(*outcome.result, (SwitchResult{true, EngineKind::windowManager, 1, 0}));
    EXPECT_EQ(probed, 1) << "the snapshot was read for this switch";
    EXPECT_EQ(provider.readings, 0);

    activator.steps = {{.tells = SpaceID{3}}};
    EXPECT_TRUE(switchTo(3).result);
    EXPECT_EQ(probed, 1) << "what was read along with the answer is not read again";
    activator.steps = {{.tells = SpaceID{3}}};
    EXPECT_TRUE(switchTo(2).result) << "the answer was a moment too early";
    EXPECT_EQ(probed, 2);
}

TEST_F(WindowManagerEngineTest, MeasuresTheTimeToTheVerifiedLanding) {
    activator.steps = {{.answersAfter = 0.25}};
    const Outcome outcome = switchTo(2);
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->elapsed, 0.25);
}

TEST_F(WindowManagerEngineTest, BelievesWhatItReadsAndNoReply) {
    // The answer is a refusal, the display shows the target.
    activator.steps = {{.refuses = true}};
    EXPECT_EQ(switchTo(2).result->attempts, 1);

    // The answer is fine, the display stays where it is.
    activator.steps = {{.obeys = false}, {}};
    EXPECT_EQ(switchTo(3).result->attempts, 2);

    const async::Nanos start = loop.now();
    activator.steps = {{.answersAfter = 0.3, .obeys = false}, {.answersAfter = 0.3, .obeys = false}};
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(2));
    EXPECT_NEAR(async::secondsOf(loop.now() - start), 1.0, 0.05);
}

TEST_F(WindowManagerEngineTest, ALateLandingIsFoundByPolling) {
    activator.steps = {{.obeys = false}};
    const Space target = desktop(2);
    const DisplayID display{"D1"};
    const SpaceSnapshot snapshot = twoDisplays(loop.date());
    Outcome outcome;
    const auto handle = async::spawn(loop, noteEnd(engine.switchTo(target, display, snapshot), outcome));
    loop.advance(0.03);
    provider.show("D1", 2);
    loop.runUntilDone();
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->attempts, 1);
    EXPECT_EQ(outcome.result->elapsed, 0.04);
}

TEST_F(WindowManagerEngineTest, TheLastRefusalSurfaces) {
    activator.steps = {{.obeys = false}, {.obeys = false, .refuses = true}};
    EXPECT_TRUE(switchTo(2).failedWithA<Refusal>());
    activator.steps = {{.obeys = false, .refuses = true}, {.obeys = false}};
    EXPECT_EQ(switchTo(2).switchError(), SwitchError::notLanded(2));
    activator.steps = {{.obeys = false, .refuses = true}, {}};
    EXPECT_EQ(switchTo(2).result->attempts, 2);
}

TEST_F(WindowManagerEngineTest, AsksNothingWhenTheDesktopIsGoneOrShown) {
    EXPECT_TRUE(switchTo(4).failedWith(Case::targetNotInSnapshot)) << "it is on the other display";
    EXPECT_TRUE(switchTo(1).failedWith(Case::alreadyThere));
    EXPECT_EQ(activator.asked, 0);

    // The snapshot says 1, which was true a moment ago.
    provider.show("D1", 2);
    EXPECT_TRUE(switchTo(1).result);
    EXPECT_EQ(activator.asked, 1);
}

TEST_F(WindowManagerEngineTest, AnOldSnapshotIsNotTrusted) {
    const DisplayID display{"D1"};
    const SpaceSnapshot old = twoDisplays(loop.date());
    const Space gone = desktop(3);
    loop.advance(1.5);
    provider.current.displays[0].spaces.pop_back();
    EXPECT_TRUE(finish(loop, engine.switchTo(gone, display, old)).failedWith(Case::targetNotInSnapshot));
    const Space there = desktop(2);
    EXPECT_TRUE(finish(loop, engine.switchTo(there, display, old)).result);
    EXPECT_EQ(provider.readings, 2);

    provider.failure = std::make_exception_ptr(Refusal());
    EXPECT_TRUE(finish(loop, engine.switchTo(gone, display, old)).failedWithA<Refusal>());
}

TEST_F(WindowManagerEngineTest, ACancelledSwitchAsksNoSecondTime) {
    activator.steps = {{.answersAfter = 0.3, .obeys = false}};
    const Space target = desktop(2);
    const DisplayID display{"D1"};
    const SpaceSnapshot snapshot = twoDisplays(loop.date());
    Outcome outcome;
    auto handle = async::spawn(loop, noteEnd(engine.switchTo(target, display, snapshot), outcome));
    loop.advance(0.1);
    handle.cancel();
    loop.runUntilDone();
    EXPECT_TRUE(outcome.failedWithA<async::Cancelled>());
    EXPECT_EQ(activator.asked, 1);
    EXPECT_EQ(loop.now(), async::wholeNanos(0.1));
}

} // namespace
} // namespace lumnara
