#pragma once

namespace lumnara {

/// Whether links between the desktops of several displays hold. `independent` keeps them in the file and
/// ignores them; `linked` brings the same links back.
enum class DisplayLinkMode { independent, linked };

} // namespace lumnara
