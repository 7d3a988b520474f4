#include "core/platform/wmipc/IpcSpaceActivator.h"

#include "core/async/Trigger.h"

namespace lumnara {

namespace {

constexpr double activationPatience = 0.3;

/// The answer to one command; the connection may hold it longer than the task that waits.
struct ActivationAnswer {
    async::Trigger arrived;
    bool lost = false;
    /// The words of a refusal.
    std::optional<std::string> refusal;
};

void takeOutcomes(ActivationAnswer& answer, const std::vector<IpcOutcome>* outcomes) {
    answer.lost = !outcomes;
    if (outcomes)
        for (const IpcOutcome& outcome : *outcomes)
            if (!outcome.success && !answer.refusal) answer.refusal = outcome.error;
    answer.arrived.fire();
}

} // namespace

async::Task<> IpcSpaceActivator::activate(const Space& target, const DisplayID& display) {
    const std::string windowManager = session_.ipc().windowManager();
    const auto answer = std::make_shared<ActivationAnswer>();
    session_.activate(target.id, display, focusKept_.lock().get(),
                      [answer](const auto* outcomes) { takeOutcomes(*answer, outcomes); });
    co_await answer->arrived.wait(activationPatience);
    if (answer->lost) throw WindowManagerError(WindowManagerError::Case::connectionLost, windowManager);
    if (answer->refusal)
        throw WindowManagerError(WindowManagerError::Case::refused, windowManager, *answer->refusal);
}

std::shared_ptr<const DisplayID> IpcSpaceActivator::keepFocusOn(const DisplayID& display) {
    auto kept = std::make_shared<const DisplayID>(display);
    focusKept_ = kept;
    return kept;
}

} // namespace lumnara
