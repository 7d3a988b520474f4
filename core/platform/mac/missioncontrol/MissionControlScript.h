#pragma once

#include "core/model/SpaceProvider.h"
#include "core/platform/mac/missioncontrol/MissionControlSession.h"

#include <optional>

/// How every piece of scripted work in Mission Control begins and ends.
namespace lumnara::MissionControlScript {

/// The frame of a display that may be scripted right now. Throws the SpaceReorderError of the first thing
/// that stands against it.
Rect requireReady(MissionControlDriving& driver, const DisplayID& display);

/// The display's Spaces as they are now. Throws SpaceReorderError displayNotInSnapshot, and what reading the
/// desktops fails with.
DisplaySpaces requireDisplay(SpaceProvider& provider, const DisplayID& display);

/// The layout as it is now, or nothing when it can't be read.
std::optional<SpaceSnapshot> look(SpaceProvider& provider);

/// Opens the session. When that fails, it leaves before it throws.
async::Task<> enter(MissionControlDriving& driver, MissionControlSession& session, Rect displayFrame,
                    int expectedCount, Point pointer);
/// Closes the session and puts the pointer back.
async::Task<> leave(MissionControlDriving& driver, MissionControlSession& session, Point pointer);

} // namespace lumnara::MissionControlScript
