#pragma once

namespace lumnara {

/// What can be asked for without naming a desktop.
enum class VoiceCommand {
    next,
    previous,
    back, ///< the desktop visited before this one
};

} // namespace lumnara
