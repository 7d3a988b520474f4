#pragma once

#include "core/model/SpaceProvider.h"
#include "core/seams/SessionProbe.h"
#include "core/switching/HelperWindowSwitching.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchHistory.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

struct SwitcherSettings {
    /// Try the synthetic gesture before the helper window.
    bool instantSwitching = true;

    bool operator==(const SwitcherSettings&) const = default;
};

/// What the login session forbids every switch for: screenLocked or sessionNotOnConsole, the first that
/// holds, or nothing.
std::optional<SwitchError> blockingReasonOf(SessionProbe& session);

/// The one door through which a display is made to show another Space: chooses the engines, checks what
/// makes a switch pointless, keeps the history. Switches may overlap; nothing queues them. Main thread.
class SpaceSwitcher {
public:
    /// The provider must outlive the switcher, and the switcher its tasks.
    explicit SpaceSwitcher(SpaceProvider& provider, SwitcherSettings initial = {});

    SwitcherSettings settings;
    SwitchHistory history;
    /// The platform's engines, which must outlive the switcher; null where there is no such engine.
    SpaceSwitching* dockSwipe = nullptr;
    HelperWindowSwitching* helperWindow = nullptr;
    /// Have a helper window on each Space even while the gesture is tried first.
    bool keepHelperWindowsWarm = false;
    /// Takes the place of the chosen chain, whatever the settings say; an empty one leaves no engine.
    std::optional<std::vector<SpaceSwitching*>> engineOverride;
    /// What forbids every switch right now, or nothing. Empty where nothing can.
    std::function<std::optional<SwitchError>()> blockingReason;
    /// Called after each switch that landed.
    std::function<void(const Space&, const DisplayID&, const SwitchResult&)> onLanded;

    // Each throws SwitchError, or what the provider or the last engine failed with. A cancelled switch ends
    // with Cancelled, though what was asked for by then may still happen.

    /// Shows the desktop of a stable key.
    async::Task<SwitchResult> switchToDesktop(std::string key);
    /// Shows `target`; the provider is read when no snapshot is given.
    async::Task<SwitchResult> switchTo(Space target, DisplayID display,
                                       std::optional<SpaceSnapshot> snapshot);
    /// Shows what the display showed before: that of the argument, else the one under the pointer, else the
    /// first.
    async::Task<SwitchResult> switchBack(std::optional<DisplayID> display = std::nullopt);

    /// Shows the desktop of a stable key with the helper window alone, past the chain: a window that the
    /// pointer holds travels along. The history takes the key that `rereading` gives after the landing, if
    /// any.
    async::Task<SwitchResult> switchWithHelperWindow(std::string key,
                                                     std::function<SpaceSnapshot()> rereading);

    /// Takes in what each display shows, so that switches made elsewhere reach the history. After each
    /// reading of the desktops. The helper windows follow the Spaces that there are.
    void observe(const SpaceSnapshot& snapshot);

private:
    void throwIfBlocked() const;
    std::vector<SpaceSwitching*> chain() const;
    async::Task<SwitchResult> runChain(const Space& target, const DisplayID& display,
                                       const SpaceSnapshot& snapshot);
    DisplayID displayToGoBackOn(const SpaceSnapshot& snapshot, std::optional<DisplayID> asked) const;

    SpaceProvider& provider_;
};

} // namespace lumnara
