#pragma once

#include "core/catalog/Desktop.h"

#include <string>
#include <vector>

/// The order of the Board over the window server's. Pure functions; any thread.
namespace lumnara::DesktopOrder {

/// One display's desktops in the user's order. A linked desktop also keeps the place that the order gives
/// its Space. Keys that aren't there are skipped; desktops that the order doesn't name follow in the order
/// they came in.
std::vector<Desktop> apply(std::vector<Desktop> desktops, const std::vector<std::string>& order);

} // namespace lumnara::DesktopOrder
