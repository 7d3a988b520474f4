#include "core/platform/LiveSpaceProvider.h"

#include "core/model/SnapshotParser.h"
#include "core/text/Text.h"

namespace lumnara {

namespace {

const DisplayID mainDisplay{"Main"};

} // namespace

SpaceSnapshot LiveSpaceProvider::snapshot() {
    const PropertyList displays = windowServer_.managedDisplaySpaces();
    SpaceSnapshot snapshot = SnapshotParser::parse(displays, loop_.date());
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
    for (const ScreenInfo& screen : screens_.screens())
        if (text::equalsIgnoringCase(screen.uuid, uuid)) return screen.name;
    return std::nullopt;
}

} // namespace lumnara
