#include "core/platform/mac/server/LiveSpaceProvider.h"

#include "core/model/SnapshotParser.h"
#include "core/platform/mac/server/DisplayHelpers.h"
#include "core/platform/mac/server/FullscreenOwnerResolver.h"

#include <utility>

namespace lumnara {

namespace {

const DisplayID mainDisplay{"Main"};

} // namespace

SpaceSnapshot LiveSpaceProvider::snapshot() {
    const PropertyList displays = windowServer_.managedDisplaySpaces();
    SpaceSnapshot snapshot = SnapshotParser::parse(displays, loop_.date());
    if (resolvesFullscreenOwners)
        snapshot = FullscreenOwnerResolver::resolve(std::move(snapshot), windowServer_, workspace_);
    sharedMain_ = snapshot.isSharedMain();
    return snapshot;
}

std::optional<DisplayID> LiveSpaceProvider::menuBarDisplay() {
    if (sharedMain_) return mainDisplay;
    const auto uuid = windowServer_.activeMenuBarDisplay();
    if (!uuid || uuid->empty()) return std::nullopt;
    return DisplayID{*uuid};
}

std::optional<DisplayID> LiveSpaceProvider::cursorDisplay() {
    if (sharedMain_) return mainDisplay;
    const auto uuid = screens_.displayUnderPointer();
    if (!uuid) return std::nullopt;
    return DisplayID{*uuid};
}

std::optional<std::string> LiveSpaceProvider::displayName(const std::string& uuid) {
    if (DisplayID{uuid}.isMain()) return "All Displays";
    auto screen = DisplayHelpers::screen(screens_, uuid);
    if (!screen) return std::nullopt;
    return std::move(screen->name);
}

} // namespace lumnara
