#pragma once

#include "core/async/Signal.h"
#include "core/model/WorkspaceEvent.h"

#include <functional>

namespace lumnara {

/// The session's notifications. Owned by Platform; delivered on the main thread, coalesced to one of a
/// kind for each batch of the window manager's events.
class Workspace {
public:
    virtual ~Workspace() = default;
    virtual async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) = 0;
};

} // namespace lumnara
