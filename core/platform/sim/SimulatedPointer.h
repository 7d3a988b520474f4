#pragma once

#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/platform/sim/SimulatedLayout.h"
#include "core/seams/EventServices.h"

#include <memory>

namespace lumnara {

/// The pointer, which programs put somewhere and the user pushes about.
class SimulatedPointer {
public:
    SimulatedPointer(async::Loop& loop, SimulatedRandom& random, const SimulatedLayout& layout)
        : loop_(loop),
          random_(random),
          layout_(layout) {}

    Point position() const { return position_; }
    void moveTo(Point to) { position_ = to; }
    /// The left button, whoever pressed it.
    bool isDown() const { return isDown_; }
    void take(const MouseEvent& event);

    /// The user moves it there.
    async::Signal<Point> pushed;

    /// For a while the user moves it to one place after another, over all screens.
    void grab();
    bool isGrabbed() const { return push_ != nullptr; }
    void letGo() { push_.reset(); }

private:
    void push();

    async::Loop& loop_;
    SimulatedRandom& random_;
    const SimulatedLayout& layout_;
    Point position_;
    bool isDown_ = false;
    async::Nanos grabbedUntil_{};
    std::unique_ptr<async::Delayed> push_;
};

} // namespace lumnara
