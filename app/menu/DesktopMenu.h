#pragma once

#include "app/menu/DesktopMenuItem.h"
#include "core/catalog/DesktopCatalog.h"

#include <string>
#include <vector>

namespace lumnara {

/// The whole menu as it is now. The desktops of several displays stand under a header each. While the
/// desktops can't be read, the reason stands in place of all that depends on them.
std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog);

/// The text for the tray's tool tip: the focused desktop, with its display when there are several, or the
/// reason why the desktops can't be read.
std::string trayToolTip(const DesktopCatalog& catalog);

} // namespace lumnara
