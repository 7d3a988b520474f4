#pragma once

namespace lumnara {

/// Points of the screen arrangement; the origin is the arrangement's top left corner.
struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const Rect&) const = default;

    Point middle() const { return {x + width / 2, y + height / 2}; }

    /// Whether the point lies inside; the left and top edges belong to the rectangle, and so do the
    /// right and bottom ones.
    bool contains(Point p) const { return p.x >= x && p.x <= x + width && p.y >= y && p.y <= y + height; }
};

} // namespace lumnara
