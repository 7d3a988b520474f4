#include "core/platform/sim/MacPicture.h"

#include "core/platform/sim/SampleMac.h"
#include "tests/simruns/SimulatedSession.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

TEST(MacPicture, FollowsAChangeOfSpaceFromItsBeginningToItsEnd) {
    SimulatedSession session;
    const auto picture = [&] { return pictureOf(session.mac, session.loop.now()).screens.front(); };
    const SpaceID first = session.space("LEFT", 0), second = session.space("LEFT", 1);
    EXPECT_EQ(picture().shown, first);
    EXPECT_FALSE(picture().arriving);

    session.mac.stage().move(second, 0.4);
    session.loop.advance(0.1);
    EXPECT_EQ(picture().arriving, second);
    EXPECT_TRUE(picture().arrivesFromTheRight);
    EXPECT_NEAR(picture().arrived, 0.25, 1e-6);
    session.loop.advance(0.3);
    EXPECT_EQ(picture().shown, second);
    EXPECT_FALSE(picture().arriving);

    session.mac.inject(SimulatedFault::animationNeverEnds);
    session.mac.stage().move(first, 0.4);
    session.loop.advance(3600);
    EXPECT_EQ(picture().arriving, first);
    EXPECT_FALSE(picture().arrivesFromTheRight);
    EXPECT_LT(picture().arrived, 1) << "it hangs";
}

TEST(MacPicture, KeepsTheWindowsOnTheirScreensWhereverThoseStand) {
    async::TestLoop loop;
    SimulatedMac mac(loop);
    const std::vector<Rect> before{{0, 0, 800, 500}, {820, 0, 800, 500}};
    furnish(mac, before);
    loop.advance(1);
    const auto windows = [&](const std::vector<Rect>& frames) {
        std::vector<std::size_t> counts;
        const MacPicture picture = pictureOf(mac, loop.now());
        for (std::size_t screen = 0; screen < frames.size(); ++screen) {
            EXPECT_EQ(picture.screens.at(screen).frame, frames[screen]);
            for (const SpacePicture& space : picture.screens[screen].spaces) {
                counts.push_back(space.windows.size());
                for (const WindowPicture& window : space.windows)
                    EXPECT_TRUE(frames[screen].contains({window.frame.x, window.frame.y})) << window.owner;
            }
        }
        return counts;
    };
    const auto counts = windows(before);
    EXPECT_EQ(counts, (std::vector<std::size_t>{2, 2, 1, 0, 1, 2, 1, 1, 0, 1}));
    // The first screen comes to stand where the second was.
    const std::vector<Rect> after{{700, 100, 1200, 750}, {1920, 100, 1200, 750}};
    mac.moveScreens(after);
    EXPECT_EQ(windows(after), counts);
    EXPECT_EQ(pictureOf(mac, loop.now()).frontmost, "Mail");
}

} // namespace
} // namespace lumnara::testing
