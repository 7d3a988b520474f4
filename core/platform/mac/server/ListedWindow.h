#pragma once

#include "core/model/Geometry.h"
#include "core/platform/mac/server/PropertyList.h"

#include <cstdint>
#include <optional>
#include <string>

namespace lumnara {

/// What the window list says of a window. A key that is missing or of another type gives nothing.
struct ListedWindow {
    std::optional<std::uint32_t> number;
    std::optional<std::int32_t> ownerPid;
    std::optional<std::string> ownerName;
    std::optional<std::int64_t> layer;
    /// In points, from the top left corner of the first screen; finite.
    std::optional<Rect> bounds;
    /// 0 for one that can't be seen, 1 for a solid one.
    std::optional<double> alpha{};
    std::optional<std::string> title{};

    bool operator==(const ListedWindow&) const = default;
    static ListedWindow of(const PropertyDictionary& entry);
};

} // namespace lumnara
