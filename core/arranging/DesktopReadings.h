#pragma once

#include "core/model/SpaceSnapshot.h"

#include <vector>

/// What every arranger asks of its readings, before it changes anything and after.
namespace lumnara::DesktopReadings {

/// The Spaces of a display, in its order.
std::vector<SpaceID> idsOf(const DisplaySpaces& shown);

/// `ids` without repetitions. Throws DesktopRemoveError unless each is a user desktop of the display, which
/// keeps another one.
std::vector<SpaceID> removable(const std::vector<SpaceID>& ids, const DisplaySpaces& shown);

/// Whether the Space is gone and its display is still there. A display that was unplugged takes its desktops
/// to another one, and nothing has been removed then.
bool isRemoved(SpaceID id, const DisplayID& display, const SpaceSnapshot& now);

/// The user desktops that the display has now and no display had before.
std::vector<SpaceID> added(const SpaceSnapshot& before, const SpaceSnapshot& now, const DisplayID& display);

} // namespace lumnara::DesktopReadings
