#include "app/qt/windows/KeyboardHold.h"

#include "app/qt/windows/WindowSystem.h"

#include <QWindow>

namespace lumnara {
namespace {

constexpr double retrySeconds = 0.02;
constexpr int mostAttempts = 50;

} // namespace

void KeyboardHold::take(QWidget& window) {
    retry_.reset();
    holder_ = &window;
    if (!placesOwnWindows()) {
        window.activateWindow();
        window.setFocus();
        return;
    }
    if (grab()) return;
    attemptsLeft_ = mostAttempts;
    retry_ = std::make_unique<async::Repeating>(loop_, retrySeconds, [this] {
        if (grab() || --attemptsLeft_ == 0) retry_.reset();
    });
}

void KeyboardHold::release(QWidget& window) {
    if (holder_ != &window) return;
    retry_.reset();
    holder_.clear();
    if (placesOwnWindows()) window.windowHandle()->setKeyboardGrabEnabled(false);
}

bool KeyboardHold::grab() {
    return holder_ && holder_->windowHandle() && holder_->windowHandle()->setKeyboardGrabEnabled(true);
}

} // namespace lumnara
