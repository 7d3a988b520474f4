#pragma once

#include "core/arranging/RemoveOutcome.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Removes desktops of a display through their thumbnails in Mission Control. A thumbnail is only asked to go
/// when its place and its title agree with what the window server reports. Main thread; one run at a time.
class DesktopRemover {
public:
    /// The driver must outlive the remover, and the remover its tasks.
    explicit DesktopRemover(MissionControlDriving& driver) : driver_(driver), session_(driver) {}

    /// Is told what goes on, as a status sentence.
    std::function<void(const std::string&)> onProgress;

    /// Repetitions in `ids` count once; without ids nothing is opened. Throws SpaceReorderError,
    /// DesktopRemoveError, or what the first reading of the desktops fails with; nothing has been removed
    /// then. In every case Mission Control is left and the pointer back at the end.
    async::Task<RemoveOutcome> remove(std::vector<SpaceID> ids, DisplayID display, SpaceProvider& provider);

private:
    async::Task<> removeAll(std::vector<SpaceID> ids, DisplayID display, Rect displayFrame, int count,
                            RemoveOutcome& outcome, SpaceProvider& provider);
    std::optional<std::string> requestRemoval(SpaceID id, const DisplayID& display, const Rect& displayFrame,
                                              int count, SpaceProvider& provider);

    MissionControlDriving& driver_;
    MissionControlSession session_;
};

} // namespace lumnara
