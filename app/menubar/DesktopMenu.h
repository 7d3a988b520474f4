#pragma once

#include "core/catalog/DesktopCatalog.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// One line of the tray's menu, top to bottom. A view draws it and, when it is chosen, does what its kind
/// says.
struct DesktopMenuItem {
    enum class Kind {
        header,    ///< a display's name over its desktops; can't be chosen
        desktop,   ///< choosing it switches to `desktop`
        message,   ///< why the desktops can't be read; can't be chosen
        separator, ///< a line; has no title
        openBoard,
        quit
    };

    Kind kind{};
    std::string title;
    bool isCurrent = false;
    bool isDimmed = false;
    /// "#RRGGBB", or a colour's name as the user stored it; nothing for a desktop without a colour.
    std::optional<std::string> color;
    /// Present exactly for `Kind::desktop`.
    std::optional<Desktop> desktop;

    bool operator==(const DesktopMenuItem&) const = default;
};

/// The whole menu as it is now. The desktops of several displays stand under a header each.
std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog);

/// The text for the tray's tool tip: the focused desktop, with its display when there are several, or the
/// reason why the desktops can't be read.
std::string trayToolTip(const DesktopCatalog& catalog);

} // namespace lumnara
