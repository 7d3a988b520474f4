#include "core/platform/i3sway/IpcAnswer.h"

#include "core/async/Task.h"
#include "core/platform/linux/WindowManagerError.h"

#include <utility>

namespace lumnara {

namespace {

constexpr double answerPatience = 0.3;

} // namespace

I3Ipc::OnOutcomes IpcAnswer::into(std::shared_ptr<IpcAnswer> answer, I3Ipc::OnOutcomes then) {
    return [answer = std::move(answer), then = std::move(then)](const std::vector<IpcOutcome>* outcomes) {
        answer->isThere_ = true;
        answer->isLost_ = !outcomes;
        if (outcomes)
            for (const IpcOutcome& outcome : *outcomes)
                if (!outcome.success && !answer->refusal_) answer->refusal_ = outcome.error;
        if (then) then(outcomes);
        answer->arrived_.fire();
    };
}

async::Task<> IpcAnswer::arrival(std::shared_ptr<IpcAnswer> answer, std::string windowManager) {
    // A reading of somebody else may have taken it in already.
    if (!answer->isThere_) {
        co_await answer->arrived_.wait(answerPatience);
    }
    if (answer->isLost_) throw WindowManagerError(WindowManagerError::Case::connectionLost, windowManager);
    if (answer->refusal_)
        throw WindowManagerError(WindowManagerError::Case::refused, windowManager, *answer->refusal_);
}

} // namespace lumnara
