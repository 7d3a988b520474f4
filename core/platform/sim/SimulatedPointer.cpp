#include "core/platform/sim/SimulatedPointer.h"

namespace lumnara {

void SimulatedPointer::take(const MouseEvent& event) {
    position_ = event.at;
    if (event.type == MouseEventType::leftDown) isDown_ = true;
    if (event.type == MouseEventType::leftUp) isDown_ = false;
}

void SimulatedPointer::grab() {
    grabbedUntil_ = loop_.now() + async::wholeNanos(random_.between(0.05, 0.6));
    push();
}

void SimulatedPointer::push() {
    const auto& screens = layout_.screens();
    if (loop_.now() >= grabbedUntil_ || screens.empty()) return letGo();
    const Rect& frame = screens[random_.below(screens.size())].frame;
    const double x = frame.x + random_.between(0, frame.width);
    const double y = frame.y + random_.between(0, frame.height);
    push_ = std::make_unique<async::Delayed>(loop_, random_.between(0.008, 0.03), [this] { push(); });
    pushed.emit({x, y});
}

} // namespace lumnara
