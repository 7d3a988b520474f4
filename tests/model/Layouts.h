#pragma once

#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lumnara::testing {

inline Space makeSpace(std::uint64_t id, std::string uuid, SpaceKind kind = SpaceKind::user) {
    Space space;
    space.id = {id};
    space.uuid = std::move(uuid);
    space.kind = kind;
    return space;
}

inline Space makeFullscreen(std::uint64_t id, std::string uuid, std::optional<RunningApp> owner) {
    Space space = makeSpace(id, std::move(uuid), SpaceKind::fullscreen);
    space.fullscreenOwner = std::move(owner);
    return space;
}

/// A display whose Spaces are given their places; it shows `current`, or the first one.
inline DisplaySpaces makeDisplay(std::string uuid, std::vector<Space> spaces, std::uint64_t current = 0) {
    for (std::size_t i = 0; i < spaces.size(); ++i) spaces[i].indexOnDisplay = static_cast<int>(i);
    if (current == 0 && !spaces.empty()) current = spaces.front().id.raw;
    return {{std::move(uuid)}, std::move(spaces), {current}};
}

} // namespace lumnara::testing
