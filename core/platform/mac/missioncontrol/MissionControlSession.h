#pragma once

#include "core/platform/mac/missioncontrol/MissionControlDriving.h"

#include <functional>
#include <string>

namespace lumnara {

/// One scripted visit to Mission Control: in, with the Spaces bar expanded, and out again. It keeps nothing
/// between its calls; whoever opens closes, after a failure too. Main thread.
class MissionControlSession {
public:
    /// The driver must outlive the session, and the session its tasks.
    explicit MissionControlSession(MissionControlDriving& driver) : driver_(driver) {}

    /// Is told what goes on, as a status sentence.
    std::function<void(const std::string&)> onProgress;

    /// Brings Mission Control up and makes its bar expand as a person would. At its end the bar on that
    /// display shows `expectedCount` thumbnails. Throws SpaceReorderError missionControlDidNotOpen, also when
    /// it has gone away again, and spacesBarNotFound.
    async::Task<> open(Rect displayFrame, int expectedCount);
    /// Leaves Mission Control by at most two Escapes. Never fails, even where it stays open.
    async::Task<> close();
    /// Waits for Mission Control to go after an Escape, and presses one more when it takes too long.
    async::Task<> awaitClosing();

    /// Whether this is a bar with pictures, at the display's own top edge.
    static bool isExpanded(const SpacesBarButtons& buttons, const Rect& displayFrame);

    /// The bar as it is now; nothing when it hasn't just so many thumbnails, has one without an area, or
    /// stands on another display.
    std::optional<SpacesBarButtons> bar(const Rect& displayFrame, int expectedCount);
    /// The same, and nothing unless it is expanded.
    std::optional<SpacesBarButtons> expandedBar(const Rect& displayFrame, int expectedCount);

private:
    async::Task<> waitUntilOpen();
    async::Task<bool> hasClosed();
    async::Task<> hover(Rect displayFrame, double topOffset);

    MissionControlDriving& driver_;
};

} // namespace lumnara
