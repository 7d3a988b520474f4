#include "app/switching/SwitchRequests.h"

#include "core/platform/linux/WindowManagerError.h"
#include "tests/app/ScriptedSession.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace lumnara::testing {
namespace {

struct Walk {
    explicit Walk(bool asksWindowManager = true) {
        if (asksWindowManager)
            session.activator->onShown = [this] { session.tell(); };
        else
            session.platform.spaceActivator.reset();
        session.start();
        telling = session.state().announcer().desktopSwitched.subscribe(
            [this](const Desktop& desktop, const auto&) { told.push_back(desktop.spaceKey); });
    }
    /// The key of what each display shows by the window manager's account.
    std::vector<std::string> shown() const {
        std::vector<std::string> keys;
        for (const DisplaySpaces& display : session.provider->current.displays)
            keys.push_back(std::ranges::find(display.spaces, display.currentID, &Space::id)->uuid);
        return keys;
    }
    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
    /// Goes to another desktop of A than it shows.
    void request() {
        std::string key;
        do key = "A-" + std::to_string(1 + below(3));
        while (key == shown()[0]);
        session.state().switchTo(session.desktop(key));
    }

    ScriptedSession session{twoDisplays()};
    std::vector<std::string> told;
    async::Subscription telling;
    std::mt19937 random{11};
};

/// Runs that land, fail, hang or are given up, while others change what the displays show.
TEST(SwitchRequests, holdTheWordOfAChangeUntilARunHasEnded) {
    Walk walk;
    ScriptedSession& session = walk.session;
    int failures = 0, givenUp = 0;
    for (int round = 0; round < 400; ++round) {
        const std::vector<std::string> before = walk.shown();
        const int readings = session.provider->readings;
        session.activator->obeys = walk.below(4) != 0;
        session.activator->stubborn = walk.below(4) == 0 ? "A" : "";
        if (walk.below(3) == 0 && session.state().switcher().history.previous("A"))
            session.state().switchBack(DisplayID{"A"});
        else
            walk.request();
        session.loop.advance(0.0005);
        for (int changes = walk.below(4); changes > 0; --changes)
            session.userShows(
                static_cast<std::uint64_t>(walk.below(2) ? 1 + walk.below(3) : 11 + walk.below(2)));
        if (walk.below(3) == 0) {
            walk.request();
            ++givenUp;
            session.loop.advance(0.0007);
            session.userShows(static_cast<std::uint64_t>(11 + walk.below(2)));
        }
        ASSERT_EQ(walk.told, std::vector<std::string>()) << "in the midst of round " << round;
        ASSERT_LE(session.provider->readings - readings, 4) << "the run's own";
        session.loop.advance(4);

        std::vector<std::string> changed;
        const std::vector<std::string> after = walk.shown();
        for (std::size_t i = 0; i < after.size(); ++i)
            if (after[i] != before[i]) changed.push_back(after[i]);
        ASSERT_EQ(walk.told, changed) << "round " << round;
        failures += !session.notices.empty();
        session.notices.clear();
        walk.told.clear();
    }
    EXPECT_GT(failures, 20);
    EXPECT_GT(givenUp, 20);
}

/// Takes two tenths of a second, as a gesture does.
class SlowEngine : public SpaceSwitching {
public:
    EngineKind kind() const override { return EngineKind::dockSwipe; }
    async::Task<SwitchResult> switchTo(const Space&, const DisplayID&, const SpaceSnapshot&) override {
        co_await async::sleepFor(0.2);
        co_return SwitchResult{true, kind(), 1, 0.2};
    }
};

TEST(SwitchRequests, tellEachChangeOnAMacAsItComes) {
    Walk walk(false);
    SlowEngine engine;
    walk.session.state().switcher().engineOverride = {&engine};
    walk.session.state().switchTo(walk.session.desktop("A-2"));
    walk.session.loop.advance(0.1);
    walk.session.userShows(12);
    walk.session.userShows(2);
    EXPECT_EQ(walk.told, (std::vector<std::string>{"B-2", "A-2"}));
}

} // namespace
} // namespace lumnara::testing
