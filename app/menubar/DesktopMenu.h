#pragma once

#include "app/DesktopLinker.h"
#include "core/catalog/DesktopCatalog.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// One line of the tray's menu, top to bottom. A view draws it; what is to be done when it is chosen, its
/// kind says.
struct DesktopMenuItem {
    enum class Kind {
        header,    ///< the name of what stands below it; can't be chosen
        desktop,   ///< choosing it switches to `desktop`
        message,   ///< why the desktops can't be read; can't be chosen
        separator, ///< a line; has no title
        submenu,   ///< opens `children`
        rename,    ///< asks for a name for `desktop`, the focused one
        linkMode,  ///< whether links hold, as `isChecked`; choosing it turns that over
        link,      ///< choosing it carries out `request`
        linkAll,   ///< links all desktops of the same name
        openBoard,
        settings,
        quit
    };

    Kind kind{};
    std::string title;
    bool isCurrent = false;
    bool isDimmed = false;
    /// One with desktops of other displays.
    bool isLinked = false;
    bool isChecked = false;
    /// "#RRGGBB", or a colour's name as the user stored it; nothing for a desktop without a colour.
    std::optional<std::string> color;
    /// Present exactly for `desktop` and `rename`.
    std::optional<Desktop> desktop;
    /// Present exactly for `link`.
    std::optional<LinkRequest> request;
    std::vector<DesktopMenuItem> children;

    bool operator==(const DesktopMenuItem&) const = default;
};

/// The whole menu as it is now. The desktops of several displays stand under a header each. While the
/// desktops can't be read, the reason stands in place of all that depends on them.
std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog);

/// The text for the tray's tool tip: the focused desktop, with its display when there are several, or the
/// reason why the desktops can't be read.
std::string trayToolTip(const DesktopCatalog& catalog);

} // namespace lumnara
