#include "core/platform/sim/SimulatedMac.h"

#include "core/text/Text.h"

#include <algorithm>
#include <functional>
#include <utility>

// The window server's calls over a simulated Mac.
namespace lumnara {

namespace {

using Connection = WindowServerCalls::Connection;
constexpr Connection ownConnection = 0x1A2B3;
/// The current Space, the others and the user's: the only mask that is answered here.
constexpr int everySpace = 7;

/// On another connection than the program's own the window server tells nothing and does nothing.
template <class R, class... Arguments>
void requireOwnConnection(std::function<R(Connection, Arguments...)>& call) {
    if (!call) return;
    call = [answer = std::move(call)](Connection connection, Arguments... arguments) {
        return connection == ownConnection ? answer(connection, arguments...) : R();
    };
}

std::vector<SpaceID> idsOf(const std::vector<std::uint64_t>& raw) {
    std::vector<SpaceID> ids;
    for (const std::uint64_t each : raw) ids.push_back({each});
    return ids;
}

} // namespace

WindowServerCalls SimulatedMac::calls() {
    WindowServerCalls calls;
    if (offers("CGSMainConnectionID")) calls.mainConnectionID = [] { return ownConnection; };
    offerReadings(calls);
    offerWindows(calls);
    requireOwnConnection(calls.copyManagedDisplaySpaces);
    requireOwnConnection(calls.getActiveSpace);
    requireOwnConnection(calls.managedDisplayGetCurrentSpace);
    requireOwnConnection(calls.copyActiveMenuBarDisplayIdentifier);
    requireOwnConnection(calls.copyManagedDisplayForSpace);
    requireOwnConnection(calls.managedDisplayIsAnimating);
    requireOwnConnection(calls.copyBestManagedDisplayForPoint);
    requireOwnConnection(calls.spaceGetType);
    requireOwnConnection(calls.copySpacesForWindows);
    requireOwnConnection(calls.addWindowsToSpaces);
    requireOwnConnection(calls.removeWindowsFromSpaces);
    return calls;
}

const SimulatedDisplay* SimulatedMac::toldDisplay(std::string_view uuid) const {
    for (const SimulatedDisplay& display : stage_.told())
        if (text::equalsIgnoringCase(display.uuid, uuid)) return &display;
    return nullptr;
}

void SimulatedMac::offerReadings(WindowServerCalls& calls) {
    using Text = std::optional<std::string>;
    if (offers("CGSCopyManagedDisplaySpaces"))
        calls.copyManagedDisplaySpaces = [this](Connection) {
            return std::optional(managedDisplaySpacesOf(stage_.told()));
        };
    if (offers("CGSGetActiveSpace"))
        calls.getActiveSpace = [this](Connection) {
            const SimulatedDisplay* display = toldDisplay(apps_.menuBarDisplay());
            return display ? display->current.raw : 0;
        };
    if (offers("CGSManagedDisplayGetCurrentSpace"))
        calls.managedDisplayGetCurrentSpace = [this](Connection, const std::string& uuid) {
            const SimulatedDisplay* display = toldDisplay(uuid);
            return display ? display->current.raw : 0;
        };
    if (offers("CGSCopyActiveMenuBarDisplayIdentifier"))
        calls.copyActiveMenuBarDisplayIdentifier = [this](Connection) {
            return Text(apps_.menuBarDisplay());
        };
    if (offers("CGSCopyManagedDisplayForSpace"))
        calls.copyManagedDisplayForSpace = [this](Connection, std::uint64_t space) {
            const SimulatedDisplay* display = layout_.displayOf({space});
            return display ? Text(display->uuid) : std::nullopt;
        };
    if (offers("CGSManagedDisplayIsAnimating"))
        calls.managedDisplayIsAnimating = [this](Connection, const std::string& uuid) {
            return stage_.isAnimating(uuid);
        };
    if (offers("CGSCopyBestManagedDisplayForPoint"))
        calls.copyBestManagedDisplayForPoint = [this](Connection, Point point) {
            const SimulatedDisplay* display = layout_.displayAt(point);
            return display ? Text(display->uuid) : std::nullopt;
        };
    if (offers("CGSSpaceGetType"))
        calls.spaceGetType = [this](Connection, std::uint64_t space) {
            const SimulatedDisplay* display = layout_.displayOf({space});
            return static_cast<int>(display ? display->find({space})->kind : SpaceKind::unknown);
        };
}

void SimulatedMac::offerWindows(WindowServerCalls& calls) {
    using Windows = std::vector<WindowNumber>;
    using Raw = std::vector<std::uint64_t>;
    if (offers("CGSCopySpacesForWindows"))
        calls.copySpacesForWindows = [this](Connection, int mask, const Windows& windows) {
            Raw spaces;
            if (mask != everySpace) return spaces;
            for (const WindowNumber number : windows)
                if (const SimulatedWindow* window = windows_.find(number))
                    for (const SpaceID space : window->spaces)
                        if (std::ranges::count(spaces, space.raw) == 0) spaces.push_back(space.raw);
            return spaces;
        };
    if (offers("CGSAddWindowsToSpaces"))
        calls.addWindowsToSpaces = [this](Connection, const Windows& windows, const Raw& spaces) {
            for (const WindowNumber window : windows) windows_.addToSpaces(window, idsOf(spaces));
        };
    if (offers("CGSRemoveWindowsFromSpaces"))
        calls.removeWindowsFromSpaces = [this](Connection, const Windows& windows, const Raw& spaces) {
            for (const WindowNumber window : windows) windows_.removeFromSpaces(window, idsOf(spaces));
        };
    if (offers("CGWindowListCopyWindowInfo"))
        calls.windowList = [this](WindowListOption option) { return std::optional(windows_.list(option)); };
}

} // namespace lumnara
