#pragma once

#include "core/async/Signal.h"
#include "core/model/WorkspaceEvent.h"

#include <functional>
#include <optional>
#include <string>

namespace lumnara {

/// The session's notifications, and who is in front. Owned by Platform; delivered on the main thread,
/// coalesced to one of a kind for each batch of the window manager's events.
class Workspace {
public:
    virtual ~Workspace() = default;
    virtual async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) = 0;

    /// The name of the application that has the keyboard; nothing when none has it or the session doesn't
    /// tell.
    virtual std::optional<std::string> frontmostApplication() { return std::nullopt; }
};

} // namespace lumnara
