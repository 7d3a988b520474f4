#pragma once

#include "core/model/SpaceSnapshot.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Workspace.h"

namespace lumnara::FullscreenOwnerResolver {

/// The snapshot with the owners of its full-screen Spaces, as far as their windows tell. A Space without a
/// window keeps no owner. Without a workspace an owner has only the name that the window list gives. Lists
/// the windows only when there is a full-screen Space.
SpaceSnapshot resolve(SpaceSnapshot snapshot, WindowServer& windowServer, Workspace* workspace);

} // namespace lumnara::FullscreenOwnerResolver
