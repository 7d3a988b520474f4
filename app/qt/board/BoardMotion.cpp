#include "app/qt/board/BoardMotion.h"

#include <cmath>

namespace lumnara {
namespace {

/// In this time the distance shrinks to about a third; a glide looks done after four times as long.
constexpr double glideSeconds = 0.045;
/// Nearer than this is there.
constexpr double arrived = 0.4;

} // namespace

void BoardMotion::scrollTo(double scroll) { targetScroll_ = scroll; }

void BoardMotion::jumpTo(double scroll) { pose_.scroll = targetScroll_ = scroll; }

void BoardMotion::displace(const std::string& key, QPointF offset) { pose_.offsets[key] = offset; }

QPointF BoardMotion::offset(const std::string& key) const {
    const auto found = pose_.offsets.find(key);
    return found != pose_.offsets.end() ? found->second : QPointF();
}

void BoardMotion::lift(const std::string& key, QPointF place) {
    pose_.lifted = key;
    pose_.liftedAt = place;
}

void BoardMotion::drop() { pose_.lifted.reset(); }

void BoardMotion::settle() {
    pose_.lifted.reset();
    pose_.offsets.clear();
    pose_.scroll = targetScroll_;
}

bool BoardMotion::moving() const { return pose_.scroll != targetScroll_ || !pose_.offsets.empty(); }

void BoardMotion::step(double seconds) {
    const double left = std::exp(-seconds / glideSeconds);
    const double distance = (pose_.scroll - targetScroll_) * left;
    pose_.scroll = std::abs(distance) < arrived ? targetScroll_ : targetScroll_ + distance;
    for (auto& [key, offset] : pose_.offsets) offset *= left;
    std::erase_if(pose_.offsets, [](const auto& entry) { return entry.second.manhattanLength() < arrived; });
}

} // namespace lumnara
