#include "core/platform/mac/server/FullscreenOwnerResolver.h"

#include "core/platform/mac/server/ListedWindow.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace lumnara {

namespace {

bool hasFullscreen(const SpaceSnapshot& snapshot) {
    return std::ranges::any_of(snapshot.displays, [](const DisplaySpaces& shown) {
        return std::ranges::count(shown.spaces, SpaceKind::fullscreen, &Space::kind) > 0;
    });
}

/// The frontmost ordinary window of each Space.
std::unordered_map<SpaceID, ListedWindow> windowsBySpace(WindowServer& windowServer) {
    std::unordered_map<SpaceID, ListedWindow> bySpace;
    const auto list = windowServer.windowList(WindowListOption::all);
    if (!list) return bySpace;
    for (const PropertyDictionary& entry : *list) {
        const ListedWindow window = ListedWindow::of(entry);
        if (!window.number || !window.ownerPid || window.layer != 0) continue;
        for (const SpaceID space : windowServer.spacesOfWindows({*window.number}))
            bySpace.emplace(space, window);
    }
    return bySpace;
}

RunningApp ownerOf(const ListedWindow& window, Workspace* workspace) {
    RunningApp owner{*window.ownerPid, std::nullopt, window.ownerName.value_or("")};
    const auto running = workspace ? workspace->runningApplication(owner.pid) : std::nullopt;
    if (!running) return owner;
    owner.bundleID = running->app.bundleID;
    if (!running->app.name.empty()) owner.name = running->app.name;
    return owner;
}

} // namespace

SpaceSnapshot FullscreenOwnerResolver::resolve(SpaceSnapshot snapshot, WindowServer& windowServer,
                                               Workspace* workspace) {
    if (!hasFullscreen(snapshot)) return snapshot;
    const auto windows = windowsBySpace(windowServer);
    for (DisplaySpaces& shown : snapshot.displays) {
        for (Space& space : shown.spaces) {
            const auto found = windows.find(space.id);
            if (space.kind == SpaceKind::fullscreen && found != windows.end())
                space.fullscreenOwner = ownerOf(found->second, workspace);
        }
    }
    return snapshot;
}

} // namespace lumnara
