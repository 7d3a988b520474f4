#include "core/platform/sim/SimulatedSpacesBar.h"

#include <algorithm>
#include <cmath>

namespace lumnara {

namespace {

// Our own choice of points and seconds, in the proportions of the real bar.
constexpr double collapsedBarHeight = 34;
constexpr double expandedBarHeight = 170;
constexpr double labelHeight = 18;
constexpr double thumbnailHeight = 100;
constexpr double labelTop = 8;
constexpr double thumbnailTop = 36;
constexpr double widestPitch = 190;
constexpr double sideMargin = 60;
/// Of a thumbnail's pitch, what it fills.
constexpr double fill = 0.85;

constexpr double stripBottom = 48;
/// A pointer that was never as far below the edge didn't come from below.
constexpr double approachDepth = 100;
/// A move inside the strip counts as small up to here; a longer one is another entry.
constexpr double smallMove = 20;
constexpr double beforeExpanding = 0.1;
constexpr double expandingTime = 0.3;
constexpr double collapsingTime = 0.2;

constexpr double addButtonSize = 32;
constexpr double addCornerWidth = 20;
constexpr double addCornerHeight = 80;

double mix(double collapsed, double expanded, double part) {
    return collapsed + (expanded - collapsed) * part;
}

} // namespace

void SimulatedSpacesBar::track(Point pointer, async::Nanos now) {
    const double depth = pointer.y - screen_.y;
    const bool leavesBar = depth > (expansion_.to > 0 ? expandedBarHeight : stripBottom);
    if (!screen_.contains(pointer) || leavesBar) {
        if (expansion_.to > 0) collapse(now);
        if (!screen_.contains(pointer))
            approach_ = Approach::none;
        else if (depth >= approachDepth || approach_ != Approach::none)
            approach_ = Approach::below;
    } else if (depth >= stripTop_ && depth <= stripBottom && approach_ != Approach::none) {
        const double moved = std::hypot(pointer.x - enteredAt_.x, pointer.y - enteredAt_.y);
        if (approach_ == Approach::inside && moved > 0 && moved <= smallMove) expand(now);
        approach_ = Approach::inside;
        enteredAt_ = pointer;
    }
}

void SimulatedSpacesBar::expand(async::Nanos now) {
    if (expansion_.to > 0) return;
    expansion_ = {expanded(now), 1, now + async::wholeNanos(beforeExpanding), expandingTime};
}

void SimulatedSpacesBar::collapse(async::Nanos now) {
    approach_ = Approach::none;
    expansion_ = {expanded(now), 0, now, collapsingTime};
}

Rect SimulatedSpacesBar::frame(async::Nanos now) const {
    return {screen_.x, screen_.y, screen_.width, mix(collapsedBarHeight, expandedBarHeight, expanded(now))};
}

Rect SimulatedSpacesBar::slot(std::size_t index, std::size_t count, async::Nanos now) const {
    const double part = expanded(now);
    const double all = static_cast<double>(count);
    const double pitch = std::min(widestPitch, (screen_.width - 2 * sideMargin) / all);
    const double left = screen_.x + (screen_.width - pitch * all) / 2;
    return {left + pitch * static_cast<double>(index) + pitch * (1 - fill) / 2,
            screen_.y + mix(labelTop, thumbnailTop, part), pitch * fill,
            mix(labelHeight, thumbnailHeight, part)};
}

Rect SimulatedSpacesBar::addButton(async::Nanos now) const {
    const double top = mix(collapsedBarHeight, expandedBarHeight / 2, expanded(now));
    return {screen_.x + screen_.width - addButtonSize - 8, screen_.y + top, addButtonSize, addButtonSize};
}

bool SimulatedSpacesBar::isNearAddButton(Point pointer) const {
    return screen_.contains(pointer) && pointer.x >= screen_.x + screen_.width - addCornerWidth &&
           pointer.y <= screen_.y + addCornerHeight;
}

} // namespace lumnara
