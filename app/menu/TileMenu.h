#pragma once

#include "app/menu/DesktopMenuItem.h"
#include "core/catalog/DesktopCatalog.h"

#include <vector>

namespace lumnara {

/// The menu of one tile of the Board: its name, how it stands out, and its link. `canAdd` tells whether
/// desktops can be added here.
std::vector<DesktopMenuItem> tileMenu(const DesktopCatalog& catalog, const Desktop& desktop, bool canAdd);

} // namespace lumnara
