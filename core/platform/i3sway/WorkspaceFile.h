#pragma once

#include "core/base/KeptFile.h"
#include "core/platform/i3sway/RegisteredDesktop.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

// The registry's file, "workspaces.json": {"schemaVersion": 1, "desktops": [...]}, the desktops display by
// display in the order of their places.

/// The desktops of a file, without ids; an empty list when there is no file. A damaged one is moved aside,
/// and the list is empty. Nothing for one that can't be read, which may be whole, or that can't be moved: it
/// must not be written over.
std::optional<std::vector<RegisteredDesktop>> loadWorkspaceFile(KeptFile& file, Date now);

std::string encodeWorkspaceFile(const std::vector<RegisteredDesktop>& desktops);

} // namespace lumnara
