#pragma once

#include "core/model/Geometry.h"

#include <string>
#include <vector>

namespace lumnara {

/// One thumbnail of the Spaces bar.
struct SpacesBarButton {
    std::string title;
    /// In points of the arrangement of all displays.
    Rect frame;

    bool operator==(const SpacesBarButton&) const = default;
    Point middle() const { return {frame.x + frame.width / 2, frame.y + frame.height / 2}; }
};

using SpacesBarButtons = std::vector<SpacesBarButton>;

} // namespace lumnara
