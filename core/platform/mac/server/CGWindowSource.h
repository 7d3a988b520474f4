#pragma once

#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/WindowSource.h"

namespace lumnara {

/// The window server's own list: ordinary windows that can be seen and have bounds, on any Space.
class CGWindowSource : public WindowSource {
public:
    /// The window server outlives the source.
    explicit CGWindowSource(WindowServer& windowServer) : windowServer_(windowServer) {}

    std::vector<DesktopWindow> windows() override;
    std::vector<SpaceID> spaces(WindowNumber windowID) override;

private:
    WindowServer& windowServer_;
};

} // namespace lumnara
