#pragma once

namespace lumnara {

/// What shows the desktops. A Mac may be a simulated one.
enum class PlatformKind { mac, windowManager };

} // namespace lumnara
