#pragma once

#include "core/async/Loop.h"
#include "core/platform/Platform.h"
#include "core/platform/linux/Environment.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// Whether a sway runs this session: the socket that $SWAYSOCK names accepts.
bool swayAnswers(const Environment& environment);

/// The whole platform on sway. `folder` is where the names of desktops are kept; "workspaces.json" stands
/// beside them. Made while sway is away, it connects when sway comes.
Platform swayPlatform(async::Loop& loop, const Environment& environment, const std::filesystem::path& folder);

/// The platform on i3 with the X server's screens, and without shortcuts and idle time, which the X server
/// gives too. `findSocket` tells the socket of the i3 that runs now, by the root window's property; $I3SOCK
/// stands in where it tells none.
/// `identify` gives a connector's monitor the identity that the screens give it.
Platform i3Platform(async::Loop& loop, const Environment& environment, const std::filesystem::path& folder,
                    std::unique_ptr<Screens> screens, std::function<std::optional<std::string>()> findSocket,
                    std::function<std::string(const std::string& connector)> identify);

} // namespace lumnara
