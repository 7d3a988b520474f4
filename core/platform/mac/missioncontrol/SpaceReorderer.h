#pragma once

#include "core/arranging/ReorderOutcome.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include <functional>
#include <string>
#include <vector>

namespace lumnara {

/// Brings a display's desktops into another order by dragging their thumbnails in Mission Control, and looks
/// after each drop whether it came out. Main thread; one run at a time.
class SpaceReorderer {
public:
    /// The driver must outlive the reorderer, and the reorderer its tasks.
    explicit SpaceReorderer(MissionControlDriving& driver) : driver_(driver), session_(driver) {}

    /// Is told what goes on, as a status sentence.
    std::function<void(const std::string&)> onProgress;

    /// Throws SpaceReorderError, or what the first reading of the desktops fails with; nothing has been moved
    /// then. In every case the button is up, Mission Control left and the pointer back at the end.
    async::Task<ReorderOutcome> reorder(DisplayID display, std::vector<SpaceID> desired,
                                        SpaceProvider& provider);

private:
    async::Task<> performMoves(DisplayID display, Rect displayFrame, std::vector<SpaceID>& working,
                               ReorderOutcome& outcome, SpaceProvider& provider);

    MissionControlDriving& driver_;
    MissionControlSession session_;
};

} // namespace lumnara
