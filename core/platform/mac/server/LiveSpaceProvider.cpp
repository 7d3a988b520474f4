#include "core/platform/mac/server/LiveSpaceProvider.h"

#include "core/platform/mac/server/DisplayHelpers.h"
#include "core/platform/mac/server/FullscreenOwnerResolver.h"
#include "core/platform/mac/server/SnapshotParser.h"
#include "core/text/Text.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

const DisplayID mainDisplay{"Main"};
constexpr const char* allDisplays = "All Displays";

} // namespace

SpaceSnapshot LiveSpaceProvider::snapshot() {
    const PropertyList displays = windowServer_.managedDisplaySpaces();
    SpaceSnapshot snapshot = SnapshotParser::parse(displays, loop_.date());
    if (resolvesFullscreenOwners)
        snapshot = FullscreenOwnerResolver::resolve(std::move(snapshot), windowServer_, workspace_);
    sharedMain_ = snapshot.isSharedMain();
    nameDisplays(snapshot);
    return snapshot;
}

void LiveSpaceProvider::nameDisplays(SpaceSnapshot& snapshot) {
    if (sharedMain_) {
        snapshot.displays.front().name = allDisplays;
        return;
    }
    const auto screens = screens_.screens();
    for (DisplaySpaces& shown : snapshot.displays) {
        const auto screen = std::ranges::find_if(screens, [&](const ScreenInfo& candidate) {
            return text::equalsIgnoringCase(candidate.uuid, shown.display.uuid);
        });
        if (screen != screens.end()) shown.name = screen->name;
    }
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
    if (DisplayID{uuid}.isMain()) return allDisplays;
    auto screen = DisplayHelpers::screen(screens_, uuid);
    if (!screen) return std::nullopt;
    return std::move(screen->name);
}

} // namespace lumnara
