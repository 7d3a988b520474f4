#include "app/AppState.h"
#include "core/async/TestLoop.h"
#include "core/platform/sim/SampleMac.h"
#include "tests/support/LogLines.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/RecordingExecutor.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lumnara::testing {
namespace {

/// The whole shell on a simulated Mac of two screens, in virtual time.
class SimulatedSwitchingTest : public ::testing::Test {
protected:
    SimulatedSwitchingTest() {
        furnish(mac, {{0, 0, 1280, 800}, {1280, 0, 1280, 800}});
        loop.advance(1);
        platform = mac.platform();
        state = std::make_unique<AppState>(loop, settings, platform, executor, folder.path());
        heard_ = state->notices().subscribe([this](const Notice& notice) { notices.push_back(notice.text); });
    }

    Desktop desktop(std::size_t screen, std::size_t position) {
        return state->catalog().displays.get().at(screen).desktops.at(position);
    }
    SpaceID shown(std::size_t screen) { return mac.layout().displays().at(screen).current; }
    /// Asks for the desktop and lets so many seconds pass.
    void go(const Desktop& target, double seconds = 2) {
        state->switchTo(target);
        loop.advance(seconds);
    }

    LogLines log;
    TemporaryFolder folder;
    async::TestLoop loop;
    SimulatedMac mac{loop};
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    RecordingExecutor executor;
    Platform platform;
    std::unique_ptr<AppState> state;
    std::vector<std::string> notices;

private:
    async::Subscription heard_;
};

TEST_F(SimulatedSwitchingTest, AGestureIsTriedFirstAndTheHelperWindowStandsIn) {
    const Desktop far = desktop(1, 3);
    const Point pointer = mac.pointer().position();
    go(far, 0.3);
    EXPECT_EQ(shown(1), far.space.id) << "three swipes, none of them animated";
    EXPECT_EQ(mac.pointer().position(), pointer);

    // Without the permission no swipe gets through.
    mac.inject(SimulatedFault::permissionWithdrawn);
    go(desktop(0, 2));
    EXPECT_EQ(shown(0), desktop(0, 2).space.id);
    mac.heal();
    settings.instantSwitching.set(false);
    go(desktop(0, 1));
    EXPECT_EQ(shown(0), desktop(0, 1).space.id);
    EXPECT_EQ(notices, std::vector<std::string>());
}

TEST_F(SimulatedSwitchingTest, TheSettingsReachTheGesture) {
    settings.gestureVelocity.set(300); // slow enough for an animation
    go(desktop(0, 1), 0.1);
    EXPECT_EQ(shown(0), desktop(0, 0).space.id) << "on its way";
    loop.advance(2);
    EXPECT_EQ(shown(0), desktop(0, 1).space.id);

    settings.gestureVelocity.set(2000);
    settings.restoreCursorAfterSwitch.set(false);
    go(desktop(1, 0), 2);
    go(desktop(1, 2), 2);
    EXPECT_TRUE((Rect{1280, 0, 1280, 800}.contains(mac.pointer().position()))) << "it stays where it swiped";
}

TEST_F(SimulatedSwitchingTest, MissionControlAndALockedScreenForbidEverySwitch) {
    ASSERT_TRUE(mac.openFile("/System/Applications/Mission Control.app"));
    loop.advance(2);
    go(desktop(0, 1));
    mac.missionControl().dismiss();
    loop.advance(2);
    mac.isLocked = true;
    go(desktop(0, 1));
    mac.isLocked = false;
    mac.isOnConsole = false;
    go(desktop(0, 1));
    EXPECT_EQ(notices, (std::vector<std::string>{"Close Mission Control first.",
                                                 "macOS does not change desktops while the screen is locked.",
                                                 "Another user is using this Mac right now."}));
    EXPECT_EQ(shown(0), desktop(0, 0).space.id);
}

TEST_F(SimulatedSwitchingTest, LinkedDesktopsMoveOnBothScreens) {
    settings.displayLinkMode.set(DisplayLinkMode::linked);
    state->catalog().rename(desktop(0, 1).key, "Mail");
    state->catalog().link(desktop(0, 1).key, desktop(1, 2).key);
    go(desktop(0, 1), 4);
    EXPECT_EQ(shown(0), desktop(0, 1).space.id);
    EXPECT_EQ(shown(1), desktop(1, 2).space.id);
}

} // namespace
} // namespace lumnara::testing
