#pragma once

#include "core/model/SpaceSnapshot.h"

namespace lumnara {

/// The display's Spaces, with the target among them; points into the snapshot. Throws SwitchError
/// targetNotInSnapshot.
const DisplaySpaces& requireOnDisplay(SpaceID target, const DisplayID& display,
                                      const SpaceSnapshot& snapshot);

/// The same for a target that the display doesn't show. Throws SwitchError alreadyThere too.
void requireElsewhere(SpaceID target, const DisplayID& display, const SpaceSnapshot& snapshot);

} // namespace lumnara
