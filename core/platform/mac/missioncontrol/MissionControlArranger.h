#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/platform/mac/missioncontrol/DesktopCreator.h"
#include "core/platform/mac/missioncontrol/DesktopRemover.h"
#include "core/platform/mac/missioncontrol/SpaceReorderer.h"

namespace lumnara {

/// Arranges desktops by scripting Mission Control, which has the screen for the while.
class MissionControlArranger : public DesktopArranger {
public:
    /// All must outlive the arranger.
    MissionControlArranger(MissionControlDriving& driver, DesktopAdding& adding, SpaceProvider& provider);

    std::optional<int> desktopsPerDisplay() const override { return DesktopCreator::desktopsPerDisplay; }
    /// Throws what SpaceReorderer::reorder throws.
    async::Task<ReorderOutcome> reorder(DisplayID display, std::vector<SpaceID> desired) override;
    /// Throws what DesktopRemover::remove throws.
    async::Task<RemoveOutcome> remove(std::vector<SpaceID> ids, DisplayID display) override;
    /// Throws DesktopCreator::Failure, SpaceReorderError displayNotInSnapshot and displayNotAttached, and
    /// what reading the desktops fails with, which may be after the desktop was added.
    async::Task<std::vector<SpaceID>> create(DisplayID display) override;

private:
    MissionControlDriving& driver_;
    SpaceProvider& provider_;
    SpaceReorderer reorderer_;
    DesktopRemover remover_;
    DesktopCreator creator_;
};

} // namespace lumnara
