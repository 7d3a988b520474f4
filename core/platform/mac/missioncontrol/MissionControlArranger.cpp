#include "core/platform/mac/missioncontrol/MissionControlArranger.h"

#include "core/arranging/DesktopReadings.h"
#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/MissionControlScript.h"
#include "core/platform/mac/missioncontrol/SpaceReorderError.h"

#include <utility>

namespace lumnara {

MissionControlArranger::MissionControlArranger(MissionControlDriving& driver, DesktopAdding& adding,
                                               SpaceProvider& provider)
    : driver_(driver),
      provider_(provider),
      reorderer_(driver),
      remover_(driver),
      creator_(driver, adding) {}

async::Task<ReorderOutcome> MissionControlArranger::reorder(DisplayID display, std::vector<SpaceID> desired) {
    reorderer_.onProgress = onProgress;
    co_return co_await reorderer_.reorder(std::move(display), std::move(desired), provider_);
}

async::Task<RemoveOutcome> MissionControlArranger::remove(std::vector<SpaceID> ids, DisplayID display) {
    remover_.onProgress = onProgress;
    co_return co_await remover_.remove(std::move(ids), std::move(display), provider_);
}

async::Task<std::vector<SpaceID>> MissionControlArranger::create(DisplayID display) {
    const SpaceSnapshot before = provider_.snapshot();
    if (before.spacesOnDisplay(display.uuid) == nullptr)
        throw SpaceReorderError(SpaceReorderError::Case::displayNotInSnapshot);
    const auto frame = driver_.displayFrame(display);
    if (!frame) throw SpaceReorderError(SpaceReorderError::Case::displayNotAttached);
    co_await creator_.create(*frame, frame, static_cast<int>(before.userSpaces(display.uuid).size()));

    co_return DesktopReadings::added(before, provider_.snapshot(), display);
}

} // namespace lumnara
