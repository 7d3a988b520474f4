#pragma once

#include "app/menu/DesktopMenu.h"

#include <QMenu>

#include <functional>

namespace lumnara {

struct Theme;

/// Draws the lines into the menu, in place of what it held. A chosen line goes to `onChosen`, which outlives
/// the menu's lines.
void fillMenu(QMenu& menu, const std::vector<DesktopMenuItem>& items,
              const std::function<void(const DesktopMenuItem&)>& onChosen);

/// Gives the menu and its submenus the theme's colours and room. Check marks are not drawn.
void dress(QMenu& menu, const Theme& theme);

} // namespace lumnara
