#pragma once

#include "app/links/DesktopLinker.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara {

/// One line of a menu about desktops, top to bottom. A view draws it; what is to be done when it is chosen,
/// its kind says.
struct DesktopMenuItem {
    enum class Kind {
        header,    ///< the name of what stands below it; can't be chosen
        desktop,   ///< choosing it switches to `desktop`
        message,   ///< why the desktops can't be read; can't be chosen
        separator, ///< a line; has no title
        submenu,   ///< opens `children`
        rename,    ///< asks for a name for `desktop`
        dim,       ///< whether `desktop` matters less, as `isChecked`; choosing it turns that over
        linkMode,  ///< whether links hold, as `isChecked`; choosing it turns that over
        link,      ///< choosing it carries out `request`
        linkAll,   ///< links all desktops of the same name
        openBoard,
        settings,
        quit
    };

    static DesktopMenuItem line(Kind kind, std::string title = {}) {
        DesktopMenuItem item;
        item.kind = kind;
        item.title = std::move(title);
        return item;
    }

    Kind kind{};
    std::string title;
    bool isCurrent = false;
    bool isDimmed = false;
    /// One with desktops of other displays.
    bool isLinked = false;
    bool isChecked = false;
    /// "#RRGGBB", or a colour's name as the user stored it; nothing for a desktop without a colour.
    std::optional<std::string> color;
    /// Present exactly for `desktop`, `rename` and `dim`.
    std::optional<Desktop> desktop;
    /// Present exactly for `link`.
    std::optional<LinkRequest> request;
    std::vector<DesktopMenuItem> children;

    bool operator==(const DesktopMenuItem&) const = default;
};

} // namespace lumnara
