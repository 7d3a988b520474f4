#include "core/async/Task.h"
#include "tests/switching/SwitchingTest.h"

namespace lumnara {
namespace {

using testing::ScriptedProvider;
using testing::twoDisplays;

async::Task<> noteLanding(async::Task<bool> landing, std::optional<bool>& landed) {
    landed = co_await std::move(landing);
}

class SwitchVerifierTest : public ::testing::Test {
protected:
    async::TaskHandle start(std::uint64_t target, const char* display, SwitchVerifier::Config config = {}) {
        landed.reset();
        return async::spawn(
            loop, noteLanding(SwitchVerifier::awaitLanding({target}, {display}, provider, config), landed));
    }
    std::optional<bool> landing(std::uint64_t target, const char* display,
                                SwitchVerifier::Config config = {}) {
        const auto handle = start(target, display, config);
        loop.runUntilDone();
        return landed;
    }

    async::TestLoop loop;
    ScriptedProvider provider{twoDisplays()};
    std::optional<bool> landed;
    int probed = 0;
};

TEST_F(SwitchVerifierTest, ReadsAfterTheFirstWaitAndThenAtEachInterval) {
    provider.probe = [&](const DisplayID&) { return SpaceID{++probed == 3 ? 2u : 1u}; };
    const auto handle = start(2, "D1");
    loop.advance(0.119);
    EXPECT_EQ(probed, 0);
    loop.advance(0.001);
    EXPECT_EQ(probed, 1);
    loop.advance(0.119);
    EXPECT_EQ(probed, 2);
    loop.runUntilDone();
    EXPECT_EQ(landed, true);
    EXPECT_EQ(loop.now(), async::wholeNanos(0.24)) << "it sleeps no more once it has landed";
    EXPECT_EQ(provider.readings, 0);
}

TEST_F(SwitchVerifierTest, GivesUpAfterItsPollsAndTheSleepBehindTheLast) {
    provider.probe = [&](const DisplayID&) { return ++probed, SpaceID{1}; };
    provider.show("D1", 2); // the provider isn't asked while the probe has a value
    EXPECT_EQ(landing(2, "D1"), false);
    EXPECT_EQ(probed, 10);
    EXPECT_EQ(loop.now(), async::wholeNanos(0.72));
    EXPECT_EQ(provider.readings, 0);

    EXPECT_EQ(landing(1, "D1", {0.5, 0.06, 0}), false) << "no poll, no landing";
    EXPECT_EQ(probed, 10);
    EXPECT_EQ(loop.now(), async::wholeNanos(0.72) + async::wholeNanos(0.5));
}

TEST_F(SwitchVerifierTest, WithoutAFirstWaitItReadsInTheSameTurn) {
    provider.probe = [&](const DisplayID&) { return ++probed, SpaceID{2}; };
    const auto handle = start(2, "D1", {0, 0.06, 10});
    loop.turn();
    EXPECT_EQ(landed, true);
}

TEST_F(SwitchVerifierTest, FallsBackToTheProviderWhoseFailuresCostOnePoll) {
    provider.probe = [](const DisplayID&) { return std::optional<SpaceID>(); };
    provider.show("D1", 2);
    EXPECT_EQ(landing(2, "d1"), true) << "displays are found in any case";
    EXPECT_EQ(landing(2, "gone"), false);
    EXPECT_EQ(provider.readings, 11);

    provider.failure = std::make_exception_ptr(std::runtime_error("away"));
    const auto handle = start(2, "D1");
    loop.advance(0.3);
    EXPECT_EQ(landed, std::nullopt);
    provider.failure = nullptr;
    loop.runUntilDone();
    EXPECT_EQ(landed, true);
    provider.failure = std::make_exception_ptr(std::runtime_error("away"));
    EXPECT_EQ(landing(2, "D1"), false);
}

TEST_F(SwitchVerifierTest, AnAnimatingDisplaySpendsThePollUnlessItIsMain) {
    int asked = 0;
    provider.probe = [&](const DisplayID&) { return ++probed, SpaceID{2}; };
    provider.animation = [&](const DisplayID&) { return ++asked <= 4; };
    EXPECT_EQ(landing(2, "D1"), true);
    EXPECT_EQ(asked, 5);
    EXPECT_EQ(probed, 1);

    asked = -100; // animates all the time
    probed = 0;
    EXPECT_EQ(landing(2, "D1"), false);
    EXPECT_EQ(probed, 0);

    asked = -100;
    EXPECT_EQ(landing(2, "Main"), true);
    EXPECT_EQ(asked, -100);
}

TEST_F(SwitchVerifierTest, CancelledSleepsArePassedOver) {
    provider.probe = [&](const DisplayID&) { return ++probed, SpaceID{1}; };
    auto handle = start(2, "D1");
    loop.advance(0.05);
    handle.cancel();
    loop.runUntilIdle();
    EXPECT_EQ(landed, false);
    EXPECT_EQ(probed, 10);
    EXPECT_EQ(loop.now(), async::wholeNanos(0.05));
}

} // namespace
} // namespace lumnara
