#include "core/platform/i3sway/IpcWorkspace.h"

namespace lumnara {

std::optional<RunningApp> IpcWorkspace::frontmostApplication() try {
    return session_.frontmostApplication();
} catch (const WindowManagerError&) {
    return std::nullopt;
}

} // namespace lumnara
