#pragma once

#include "core/catalog/Desktop.h"

#include <string>
#include <vector>

namespace lumnara {

/// The order of the Board over the window server's.
class DesktopOrder {
public:
    /// One display's desktops in the user's order. Keys that aren't there are skipped; desktops that the
    /// order doesn't name follow in the order they came in.
    static std::vector<Desktop> apply(std::vector<Desktop> desktops, const std::vector<std::string>& order);
};

} // namespace lumnara
