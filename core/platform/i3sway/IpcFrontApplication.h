#pragma once

#include "core/platform/i3sway/I3Ipc.h"
#include "core/platform/i3sway/IpcReplies.h"

#include <cstdint>
#include <optional>

namespace lumnara {

/// The application that has the keyboard: asked for once, then kept by what the window manager tells. Main
/// thread.
class IpcFrontApplication {
public:
    /// Asks only when what was told doesn't say. Throws WindowManagerError.
    std::optional<RunningApp> read(I3Ipc& ipc);

    void forget();
    /// The keyboard went to this workspace, and there to the window that had it last.
    void workspaceFocused(const IpcFocus& focus) { set(focus); }
    void noteWindow(const IpcWindowEvent& event);

private:
    void set(const IpcFocus& focus);

    IpcFocus focus_;
    bool isKnown_ = false;
    /// Counts what was told.
    std::uint64_t told_ = 0;
};

} // namespace lumnara
