#pragma once

#include "core/platform/sim/SimulatedMotion.h"

#include "core/model/Geometry.h"

#include <cstddef>

namespace lumnara {

/// The Spaces bar along the top of one screen: it expands for a pointer that comes from below and then moves
/// a little inside the strip at the top, and collapses when the pointer leaves.
class SimulatedSpacesBar {
public:
    /// `stripTop`: how far below the screen's edge the strip begins, in points; a menu bar or a camera may
    /// lie above it.
    SimulatedSpacesBar(Rect screen, double stripTop) : screen_(screen), stripTop_(stripTop) {}

    /// The pointer has moved there.
    void track(Point pointer, async::Nanos now);
    void collapse(async::Nanos now);

    const Rect& screen() const { return screen_; }
    double expanded(async::Nanos now) const { return expansion_.at(now); }
    bool isExpanded(async::Nanos now) const { return expanded(now) > 0.9; }
    bool moves(async::Nanos now) const { return expansion_.runs(now); }

    /// The bar itself.
    Rect frame(async::Nanos now) const;
    /// The place of one of `count` thumbnails.
    Rect slot(std::size_t index, std::size_t count, async::Nanos now) const;
    Rect addButton(async::Nanos now) const;
    /// Whether the pointer is where the add button shows even in a collapsed bar.
    bool isNearAddButton(Point pointer) const;

private:
    enum class Approach { none, below, inside };
    void expand(async::Nanos now);

    Rect screen_;
    double stripTop_;
    Approach approach_ = Approach::none;
    Point enteredAt_;
    SimulatedMotion expansion_;
};

} // namespace lumnara
