#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/linux/DesktopArranging.h"

#include <memory>
#include <string>
#include <utility>

namespace lumnara {

/// Arranges desktops by asking the window manager, and tells what came of it by what is read afterwards,
/// never by what it answered. Desktops and windows that come or go meanwhile are let be.
class WindowManagerArranger : public DesktopArranger {
public:
    /// The provider must outlive the arranger.
    WindowManagerArranger(SpaceProvider& provider, std::unique_ptr<DesktopArranging> windowManager)
        : provider_(provider),
          windowManager_(std::move(windowManager)) {}

    std::optional<int> desktopsPerDisplay() const override { return std::nullopt; }
    /// Throws WindowManagerError and what reading the desktops fails with.
    async::Task<ReorderOutcome> reorder(DisplayID display, std::vector<SpaceID> desired) override;
    /// Throws DesktopRemoveError, WindowManagerError and what reading the desktops fails with.
    async::Task<RemoveOutcome> remove(std::vector<SpaceID> ids, DisplayID display) override;
    /// Throws WindowManagerError and what reading the desktops fails with, perhaps after the desktop was
    /// added.
    async::Task<std::vector<SpaceID>> create(DisplayID display) override;

private:
    DisplaySpaces requireDisplay(const SpaceSnapshot& snapshot, const DisplayID& display) const;
    async::Task<std::optional<std::string>> removeOne(SpaceID id, DisplayID display);
    async::Task<std::optional<std::string>> arrange(DisplayID display, std::vector<SpaceID> order);

    SpaceProvider& provider_;
    std::unique_ptr<DesktopArranging> windowManager_;
};

} // namespace lumnara
