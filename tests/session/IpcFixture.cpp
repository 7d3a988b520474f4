#include "tests/session/IpcFixture.h"

#include "core/async/Task.h"

namespace lumnara::testing {

namespace {

struct SwitchOutcome {
    bool done = false;
    std::optional<std::string> failure = std::nullopt;
};

async::Task<> switchOver(SpaceSwitcher& switcher, std::string uuid, SwitchOutcome& outcome) {
    try {
        co_await switcher.switchToDesktop(uuid);
    } catch (const std::exception& error) {
        outcome.failure = error.what();
    }
    outcome.done = true;
}

} // namespace

std::optional<std::string> IpcFixture::switchTo(const std::string& uuid) {
    SwitchOutcome outcome;
    const auto handle = async::spawn(loop, switchOver(running_->switcher, uuid, outcome));
    EXPECT_TRUE(runUntil([&] { return outcome.done; }));
    return outcome.failure;
}

} // namespace lumnara::testing
