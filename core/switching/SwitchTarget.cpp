#include "core/switching/SwitchTarget.h"

#include "core/switching/SwitchError.h"

#include <algorithm>

namespace lumnara {

const DisplaySpaces& requireOnDisplay(SpaceID target, const DisplayID& display,
                                      const SpaceSnapshot& snapshot) {
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    if (!shown || std::ranges::count(shown->spaces, target, &Space::id) == 0)
        throw SwitchError(SwitchError::Case::targetNotInSnapshot);
    return *shown;
}

void requireElsewhere(SpaceID target, const DisplayID& display, const SpaceSnapshot& snapshot) {
    if (requireOnDisplay(target, display, snapshot).currentID == target)
        throw SwitchError(SwitchError::Case::alreadyThere);
}

} // namespace lumnara
