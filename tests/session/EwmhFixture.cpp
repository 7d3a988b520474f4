#include "tests/session/EwmhFixture.h"

#include "core/async/Task.h"

namespace lumnara::testing {

namespace {

struct Activation {
    bool done = false;
    std::string failure = {};
};

async::Task<> activateOn(SpaceActivator& activator, Space target, Activation& activation) {
    try {
        co_await activator.activate(target, {"Main"});
    } catch (const Failure& error) {
        activation.failure = error.sentence();
    }
    activation.done = true;
}

} // namespace

std::string EwmhFixture::activate(const Space& target) {
    Activation activation;
    const auto handle = async::spawn(loop, activateOn(*platform.spaceActivator, target, activation));
    EXPECT_TRUE(runUntil([&] { return activation.done; }));
    return activation.failure;
}

} // namespace lumnara::testing
