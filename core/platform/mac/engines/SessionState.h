#pragma once

#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/SessionProbe.h"
#include "core/switching/SwitchError.h"

#include <optional>

/// What of the session makes every switch pointless, read afresh at each call.
namespace lumnara::SessionState {

/// By the Dock's windows on the screen: there are some of layer 18, and fewer than of layer 20.
bool isMissionControlVisible(WindowServer& windowServer);
/// Whether the Dock has any window of layer 18 or 20 on the screen: the looser probe.
bool dockOverlayVisible(WindowServer& windowServer);

/// screenLocked, sessionNotOnConsole or missionControlActive, the first that holds, or nothing.
std::optional<SwitchError> blockingReason(SessionProbe& session, WindowServer& windowServer);

} // namespace lumnara::SessionState
