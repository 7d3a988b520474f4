#pragma once

#include "core/async/Signal.h"
#include "core/model/SpaceSnapshot.h"
#include "core/seams/WorkspaceEvent.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara {

/// How much of an application the user sees; the system's own numbers.
enum class ActivationPolicy : int {
    regular = 0,   ///< it stands in the Dock
    accessory = 1, ///< windows, and no place in the Dock
    prohibited = 2 ///< neither
};

/// With what insistence an application is activated; the system's own bits.
enum class ActivationOptions : std::uint32_t { none = 0, ignoringOtherApps = 2 };

struct RunningApplication {
    RunningApp app;
    ActivationPolicy policy = ActivationPolicy::regular;

    bool operator==(const RunningApplication&) const = default;
};

/// The session's notifications, who runs and who is in front. Owned by Platform; delivered on the main
/// thread, coalesced to one of a kind for each batch of the window manager's events.
class Workspace {
public:
    virtual ~Workspace() = default;
    virtual async::Subscription observe(std::function<void(WorkspaceEvent)> onEvent) = 0;

    /// The application that has the keyboard; nothing when none has it or the session doesn't tell.
    virtual std::optional<RunningApp> frontmostApplication() { return std::nullopt; }

    /// In the order of their start; empty where the session doesn't tell.
    virtual std::vector<RunningApplication> runningApplications() { return {}; }
    /// The running application of that process, or nothing.
    std::optional<RunningApplication> runningApplication(std::int32_t pid) {
        for (RunningApplication& running : runningApplications())
            if (running.app.pid == pid) return std::move(running);
        return std::nullopt;
    }
    /// Asks that another application become active. Does nothing where that can't be asked.
    virtual void activate(std::int32_t /*pid*/, ActivationOptions) {}

    /// Opens what the path leads to, an application or a file, as a double click does. False when it can't be
    /// asked for.
    virtual bool openFile(const std::string& /*path*/) { return false; }
};

} // namespace lumnara
