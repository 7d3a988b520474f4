#pragma once

#include "core/platform/Platform.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

class X11Connection;

/// The name of the EWMH window manager that tells of desktops there; nothing when there is none.
std::optional<std::string> ewmhWindowManager(const std::shared_ptr<X11Connection>& connection);

/// A whole platform on the EWMH window manager, also one that is yet to come: until then its readings throw
/// WindowManagerError. `folder` is where the names of desktops are kept; "ewmh-desktops.json" stands beside
/// them.
Platform ewmhPlatform(const std::shared_ptr<X11Connection>& connection, const std::filesystem::path& folder);

} // namespace lumnara
