#pragma once

#include "app/qt/board/BoardPainter.h"

#include <QPointF>

#include <string>

namespace lumnara {

/// Lets the Board's tiles glide: the scroll to where it should be, and tiles that were pushed aside to
/// their places. It has no clock; its owner steps it while anything moves.
class BoardMotion {
public:
    const BoardPose& pose() const { return pose_; }
    double targetScroll() const { return targetScroll_; }

    void scrollTo(double scroll);
    void jumpTo(double scroll);
    /// The tile's place has changed; it starts from where it was, `offset` from the new place.
    void displace(const std::string& key, QPointF offset);
    /// How far a tile still is from its place.
    QPointF offset(const std::string& key) const;
    /// The tile is in the pointer's hand, its top left corner at `place`.
    void lift(const std::string& key, QPointF place);
    void drop();
    /// Everything is at its place at once, nothing is lifted.
    void settle();

    bool moving() const;
    /// Moves everything on by so many seconds.
    void step(double seconds);

private:
    BoardPose pose_;
    double targetScroll_ = 0;
};

} // namespace lumnara
