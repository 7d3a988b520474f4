#pragma once

#include "core/async/Driver.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/mac/server/OwnApplication.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/seams/Screens.h"
#include "core/seams/Workspace.h"
#include "core/switching/HelperWindowSwitching.h"
#include "core/switching/SwitchVerifier.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace lumnara {

/// Switches by activating the program with its key window on the target Space, for which it keeps a nearly
/// invisible window on each Space. A full-screen Space takes no foreign window; there the application that
/// owns it is activated. It needs no permission, and never tries twice. Main thread.
class HelperWindowEngine : public HelperWindowSwitching {
public:
    /// All must outlive the engine.
    HelperWindowEngine(SpaceProvider& provider, WindowServer& windowServer, OwnApplication& own,
                       Workspace& workspace, Screens& screens)
        : provider_(provider),
          windowServer_(windowServer),
          own_(own),
          workspace_(workspace),
          screens_(screens) {}
    ~HelperWindowEngine() override { closeAll(); }

    /// Only the interval is used.
    SwitchVerifier::Config verify;
    /// Let the application of the new Space become active again after the switch.
    bool handsFocusBack = true;

    EngineKind kind() const override { return EngineKind::helperWindow; }

    /// Throws SwitchError targetNotInSnapshot, alreadyThere, engineUnavailable and notLanded, and Cancelled.
    async::Task<SwitchResult> switchTo(const Space& target, const DisplayID& display,
                                       const SpaceSnapshot& snapshot) override;

    /// Waits for the landing on behalf of somebody who has activated an application already, at `startedAt`.
    /// Throws SwitchError notLanded and Cancelled, after the focus was handed back.
    async::Task<SwitchResult> awaitAndHandBack(SpaceID target, DisplayID display, EngineKind engine,
                                               async::Nanos startedAt);

    /// The window of a Space, made now if there is none, on that Space as far as it takes one.
    OwnWindow& window(SpaceID space, const DisplayID& display);
    void warm(const SpaceSnapshot& snapshot) override;
    void pruneWindows(const SpaceSnapshot& keeping) override;
    void closeAll();

private:
    EngineKind activateFor(const Space& target, const DisplayID& display);
    OwnWindow& makeWindow(SpaceID space, const DisplayID& display);
    /// Puts the window on this Space alone.
    void pin(OwnWindow& window, SpaceID space);
    std::vector<SpaceID> spacesOf(OwnWindow& window);
    void handFocusBack(const DisplayID& display);
    std::optional<std::int32_t> applicationToFocus(const DisplayID& display);
    void activate(std::int32_t pid);
    Rect frameForWindow(const DisplayID& display);

    SpaceProvider& provider_;
    WindowServer& windowServer_;
    OwnApplication& own_;
    Workspace& workspace_;
    Screens& screens_;
    std::map<SpaceID, std::unique_ptr<OwnWindow>> windows_;
};

} // namespace lumnara
