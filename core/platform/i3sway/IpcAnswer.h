#pragma once

#include "core/async/TaskFwd.h"
#include "core/async/Trigger.h"
#include "core/platform/i3sway/I3Ipc.h"

#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// The answer to commands that one task waits for. The connection may hold it longer than that task.
class IpcAnswer {
public:
    /// What the connection is to call; once the answer is there, `then` is called as well.
    static I3Ipc::OnOutcomes into(std::shared_ptr<IpcAnswer> answer, I3Ipc::OnOutcomes then = {});

    /// Returns when the answer is there or has had its time. Throws WindowManagerError when the connection
    /// was lost, or with the words of the first refusal.
    static async::Task<> arrival(std::shared_ptr<IpcAnswer> answer, std::string windowManager);

private:
    async::Trigger arrived_;
    bool isThere_ = false;
    bool isLost_ = false;
    std::optional<std::string> refusal_;
};

} // namespace lumnara
