#pragma once

#include "core/arranging/ReorderMove.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include <optional>
#include <string>

namespace lumnara {

/// Drags one thumbnail of the Spaces bar to another place as a hand does: press, hold, lift, travel, aim
/// again, drop. Main thread.
class ThumbnailDrag {
public:
    /// A bar of `count` thumbnails is expected throughout. All must outlive the task.
    ThumbnailDrag(MissionControlDriving& driver, MissionControlSession& session, Rect displayFrame, int count)
        : driver_(driver),
          session_(session),
          displayFrame_(displayFrame),
          count_(count) {}

    /// The sentence of what stopped it, or nothing when the thumbnail was dropped. A button that was pressed
    /// is released exactly once.
    async::Task<std::optional<std::string>> perform(ReorderMove move);

private:
    bool isPlace(int index) const { return index >= 0 && index < count_; }
    Point dropPointOn(const SpacesBarButtons& buttons, int to) const;
    async::Task<> lift(Point from);
    async::Task<> drag(Point from, Point to, int steps);

    MissionControlDriving& driver_;
    MissionControlSession& session_;
    Rect displayFrame_;
    int count_;
    /// 1 to the right, -1 to the left.
    double direction_ = 1;
};

} // namespace lumnara
