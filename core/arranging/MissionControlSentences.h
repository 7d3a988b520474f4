#pragma once

/// What ended a script, where several can say it.
namespace lumnara::MissionControlSentences {

inline constexpr const char* barGone = "Mission Control closed or stopped showing the desktop thumbnails.";
inline constexpr const char* desktopGone = "That desktop is not on this display any more.";

} // namespace lumnara::MissionControlSentences
