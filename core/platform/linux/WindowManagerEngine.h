#pragma once

#include "core/model/SpaceProvider.h"
#include "core/seams/SpaceActivator.h"
#include "core/switching/SpaceSwitching.h"

namespace lumnara {

/// Switches by asking the window manager, and believes only what it then reads: not a reply, and not a
/// refusal either. Main thread.
class WindowManagerEngine : public SpaceSwitching {
public:
    /// Both must outlive the engine.
    WindowManagerEngine(SpaceActivator& activator, SpaceProvider& provider)
        : activator_(activator),
          provider_(provider) {}

    EngineKind kind() const override { return EngineKind::windowManager; }

    /// Throws SwitchError targetNotInSnapshot, alreadyThere and notLanded, what reading the desktops fails
    /// with, the activator's Failure when the last attempt could not even be asked for, and Cancelled.
    async::Task<SwitchResult> switchTo(const Space& target, const DisplayID& display,
                                       const SpaceSnapshot& snapshot) override;

private:
    void requireElsewhere(SpaceID target, const DisplayID& display, const SpaceSnapshot& given,
                          Date now) const;
    async::Task<bool> attempt(const Space& target, const DisplayID& display, bool isLast);

    SpaceActivator& activator_;
    SpaceProvider& provider_;
};

} // namespace lumnara
