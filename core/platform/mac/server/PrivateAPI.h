#pragma once

#include "core/model/SpaceKitError.h"
#include "core/platform/mac/server/WindowServerCalls.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara {

/// The window server of a Mac over its private calls. A build of the system that lacks a call gives a typed
/// error or no answer, and never a crash. Main thread.
class PrivateAPI : public WindowServer {
public:
    explicit PrivateAPI(WindowServerCalls calls) : calls_(std::move(calls)) {}

    /// Throws SpaceKitError: privateAPIUnavailable for a missing call, enumerationFailed for no result,
    /// malformed for a result that is no list of dictionaries.
    PropertyList managedDisplaySpaces() override;
    /// Nothing when the call is missing or gives 0.
    std::optional<SpaceID> currentSpace(const DisplayID& display) override;
    std::optional<bool> isAnimating(const DisplayID& display) override;
    std::optional<std::string> activeMenuBarDisplay() override;
    std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>& windows) override;
    void addWindowsToSpaces(const std::vector<WindowNumber>& windows,
                            const std::vector<SpaceID>& spaces) override;
    void removeWindowsFromSpaces(const std::vector<WindowNumber>& windows,
                                 const std::vector<SpaceID>& spaces) override;
    std::optional<PropertyList> windowList(WindowListOption option) override;

    // Throw SpaceKitError privateAPIUnavailable when the call is missing.

    SpaceID activeSpace();
    /// The uuid of the display that holds the Space, or nothing.
    std::optional<std::string> displayOfSpace(SpaceID space);
    /// The uuid of the display for a point, or nothing.
    std::optional<std::string> displayAt(Point point);
    SpaceKind kindOfSpace(SpaceID space);

private:
    bool offers(const auto& call) const { return calls_.mainConnectionID && call; }
    /// The call's result on the program's connection.
    auto required(const auto& call, const auto&... arguments) const {
        if (!offers(call)) throw SpaceKitError::privateAPIUnavailable();
        return call(calls_.mainConnectionID(), arguments...);
    }

    WindowServerCalls calls_;
};

} // namespace lumnara
