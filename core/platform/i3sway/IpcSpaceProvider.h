#pragma once

#include "core/model/SpaceProvider.h"
#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/Screens.h"

namespace lumnara {

/// The desktops of i3 or sway. A desktop whose workspace is gone stands in the list all the same; a display
/// that shows no workspace, as in the midst of being plugged or unplugged, does not. Neither window manager
/// animates.
class IpcSpaceProvider : public SpaceProvider {
public:
    /// All outlive the provider.
    IpcSpaceProvider(const async::Loop& loop, IpcSession& session, Screens& screens)
        : loop_(loop),
          session_(session),
          screens_(screens) {}

    /// Throws WindowManagerError, and SpaceKitError::enumerationFailed while no display shows anything.
    SpaceSnapshot snapshot() override;
    /// The display that has the keyboard.
    std::optional<DisplayID> menuBarDisplay() override;
    std::optional<DisplayID> cursorDisplay() override;
    std::optional<std::string> displayName(const std::string& uuid) override;
    std::optional<SpaceID> currentSpace(const DisplayID& display) override;

private:
    DisplaySpaces spacesOn(const IpcSession::Display& display) const;

    const async::Loop& loop_;
    IpcSession& session_;
    Screens& screens_;
};

} // namespace lumnara
