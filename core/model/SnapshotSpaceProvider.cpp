#include "core/model/SnapshotSpaceProvider.h"

#include <utility>

namespace lumnara {

SnapshotSpaceProvider::SnapshotSpaceProvider(SpaceSnapshot snapshot, std::optional<DisplayID> menuBarDisplay,
                                             std::optional<DisplayID> cursorDisplay,
                                             std::map<std::string, std::string> displayNames)
    : current(std::move(snapshot)),
      menuBar(std::move(menuBarDisplay)),
      cursor(std::move(cursorDisplay)),
      names(std::move(displayNames)) {
    if (current.displays.empty()) return;
    if (!menuBar) menuBar = current.displays.front().display;
    if (!cursor) cursor = current.displays.front().display;
}

std::optional<std::string> SnapshotSpaceProvider::displayName(const std::string& uuid) {
    const auto found = names.find(uuid);
    if (found == names.end()) return std::nullopt;
    return found->second;
}

} // namespace lumnara
