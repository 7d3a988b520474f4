#pragma once

#include "core/catalog/Desktop.h"
#include "core/seams/Screens.h"

#include <functional>
#include <memory>
#include <string>

namespace lumnara {

/// What is told of a desktop that has come to the front of its display.
struct OverlayCard {
    Desktop desktop;
    /// Empty where there is only one display.
    std::string displayName;

    bool operator==(const OverlayCard&) const = default;
};

/// One screen's card. Owned by SwitchOverlayController, main thread; kept while hidden and used again.
class OverlaySurface {
public:
    virtual ~OverlaySurface() = default;

    /// Puts the card up, in place of the one before it.
    virtual void show(const OverlayCard& card, const ScreenInfo& screen) = 0;
    virtual void hide() = 0;
};

using OverlaySurfaceFactory = std::function<std::unique_ptr<OverlaySurface>()>;

} // namespace lumnara
