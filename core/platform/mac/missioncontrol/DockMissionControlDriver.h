#pragma once

#include "core/platform/mac/missioncontrol/DesktopAdding.h"
#include "core/platform/mac/missioncontrol/DockTree.h"
#include "core/platform/mac/missioncontrol/MissionControlDriving.h"
#include "core/platform/mac/server/Preferences.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Accessibility.h"
#include "core/seams/EventServices.h"
#include "core/seams/Screens.h"
#include "core/seams/SessionProbe.h"
#include "core/seams/Workspace.h"

#include <optional>
#include <string>

namespace lumnara {

/// What Mission Control is met through.
struct MissionControlSeams {
    Accessibility& accessibility;
    EventServices& events;
    Preferences& preferences;
    Screens& screens;
    SessionProbe& session;
    WindowServer& windowServer;
    Workspace& workspace;
};

/// Mission Control as the Dock shows it: read and pressed through the Dock's elements, moved about in by
/// events at the lowest level, where they read as the mouse's own.
class DockMissionControlDriver : public MissionControlDriving, public DesktopAdding {
public:
    /// The seams must outlive the driver.
    explicit DockMissionControlDriver(const MissionControlSeams& seams)
        : seams_(seams),
          tree_(seams.accessibility, seams.workspace) {}

    bool isAccessibilityTrusted() override { return seams_.accessibility.isTrusted(); }
    bool mruSpacesEnabled() override;
    std::optional<SwitchError> blockingReason() override;
    bool isOpen() override { return tree_.missionControl() != nullptr; }
    std::optional<Rect> displayFrame(const DisplayID& display) override;

    void open() override;
    void pressEscape() override;

    std::optional<SpacesBarButtons> spacesBarButtons(const std::optional<Rect>& displayFrame) override;
    bool removeDesktop(int index, const std::string& title) override;

    void movePointer(Point to) override;
    void pressPointer(Point at) override;
    void dragPointer(Point to) override;
    void releasePointer(Point at) override;
    Point pointerLocation() override;
    void warpPointer(Point to) override { seams_.events.warpPointer(to); }

    async::Task<> pause(double seconds) override;

    bool addDesktop(const std::optional<Rect>& displayFrame) override;
    bool addDesktopByDescription() override;

private:
    void postMouse(MouseEventType type, Point at);

    MissionControlSeams seams_;
    DockTree tree_;
    /// What the bar that was read last was asked for by, which is the one that a removal means; nothing
    /// before the first reading.
    std::optional<std::optional<Rect>> lastDisplayFrame_;
    /// Pointer events go with the state of the hardware.
    std::optional<EventSourceState> source_ = EventSourceState::hidSystem;
};

} // namespace lumnara
