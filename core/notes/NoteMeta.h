#pragma once

#include "core/base/Date.h"
#include "core/model/Geometry.h"

#include <optional>

namespace lumnara {

/// The screen edge at which a docked note hangs.
enum class NoteEdge { left, right };

/// The state of a note's panel.
struct NoteMeta {
    /// Where the panel floats, in screen points; none before it was first placed.
    std::optional<Rect> frame{};
    /// The note hangs at a screen edge as a nub.
    bool isDocked = false;
    NoteEdge edge = NoteEdge::right;
    /// Where along that edge, as a fraction of its height.
    double edgeOffset = 0.4;
    /// The panel is open.
    bool isVisible = false;
    /// The moment of the last save; a store sets it.
    Date updatedAt{};

    bool operator==(const NoteMeta&) const = default;
};

} // namespace lumnara
