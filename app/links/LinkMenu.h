#pragma once

#include "app/menu/DesktopMenuItem.h"
#include "core/catalog/DesktopCatalog.h"

#include <optional>
#include <vector>

/// The lines about links that menus have in common.
namespace lumnara::LinkMenu {

/// Whether there are displays with desktops of their own to link.
bool hasPlace(const DesktopCatalog& catalog);
/// Turns links on and off.
DesktopMenuItem mode(const DesktopCatalog& catalog);
/// What can be done with one desktop's link while links hold; none where nothing can.
std::vector<DesktopMenuItem> lines(const DesktopCatalog& catalog, const Desktop& desktop);
/// A new desktop on another display for one that has no link; nothing for any other.
std::optional<DesktopMenuItem> newPartner(const DesktopCatalog& catalog, const Desktop& desktop);

} // namespace lumnara::LinkMenu
