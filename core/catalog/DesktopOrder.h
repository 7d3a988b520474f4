#pragma once

#include "core/catalog/Desktop.h"

#include <optional>
#include <string>
#include <vector>

/// The order of the Board over the window server's. Pure functions; any thread.
namespace lumnara::DesktopOrder {

/// One display's desktops in the user's order. A linked desktop also keeps the place that the order gives
/// its Space. Keys that aren't there are skipped; desktops that the order doesn't name follow in the order
/// they came in.
std::vector<Desktop> apply(std::vector<Desktop> desktops, const std::vector<std::string>& order);

/// The keys with those that the order names in its order, in the places that they hold among the others.
std::vector<std::string> rearranged(std::vector<std::string> keys, const std::vector<std::string>& order);

/// The keys of a display whose ordinary linked desktops take the order that they have on another display,
/// which has changed; nothing where they stand in it already.
std::optional<std::vector<std::string>> following(const std::vector<Desktop>& changed,
                                                  const std::vector<Desktop>& follower);

/// The desktops' keys, in their order.
std::vector<std::string> keysOf(const std::vector<Desktop>& desktops);

} // namespace lumnara::DesktopOrder
