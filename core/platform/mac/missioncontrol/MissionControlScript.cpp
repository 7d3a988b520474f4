#include "core/platform/mac/missioncontrol/MissionControlScript.h"

#include "core/async/Task.h"
#include "core/platform/mac/missioncontrol/FrameArea.h"
#include "core/platform/mac/missioncontrol/SpaceReorderError.h"

#include <exception>

namespace lumnara::MissionControlScript {

Rect requireReady(MissionControlDriving& driver, const DisplayID& display) {
    using Case = SpaceReorderError::Case;
    if (!driver.isAccessibilityTrusted()) throw SpaceReorderError(Case::accessibilityNotTrusted);
    if (driver.mruSpacesEnabled()) throw SpaceReorderError(Case::mruSpacesOn);
    if (const auto reason = driver.blockingReason()) throw SpaceReorderError::session(*reason);
    if (driver.isOpen()) throw SpaceReorderError(Case::missionControlOpen);
    const auto frame = driver.displayFrame(display);
    if (!frame || !hasArea(*frame)) throw SpaceReorderError(Case::displayNotAttached);
    return *frame;
}

DisplaySpaces requireDisplay(SpaceProvider& provider, const DisplayID& display) {
    const SpaceSnapshot snapshot = provider.snapshot();
    const DisplaySpaces* shown = snapshot.spacesOnDisplay(display.uuid);
    if (shown == nullptr) throw SpaceReorderError(SpaceReorderError::Case::displayNotInSnapshot);
    return *shown;
}

std::optional<SpaceSnapshot> look(SpaceProvider& provider) {
    try {
        return provider.snapshot();
    } catch (const std::exception&) {
        return std::nullopt; // a step that can't be checked ends the script; which error it was changes
                             // nothing
    }
}

async::Task<> enter(MissionControlDriving& driver, MissionControlSession& session, Rect displayFrame,
                    int expectedCount, Point pointer) {
    std::exception_ptr failure;
    try {
        co_await session.open(displayFrame, expectedCount);
    } catch (const SpaceReorderError&) {
        failure = std::current_exception();
    }
    if (!failure) co_return;
    co_await leave(driver, session, pointer);
    std::rethrow_exception(failure);
}

async::Task<> leave(MissionControlDriving& driver, MissionControlSession& session, Point pointer) {
    co_await session.close();
    driver.warpPointer(pointer);
}

} // namespace lumnara::MissionControlScript
