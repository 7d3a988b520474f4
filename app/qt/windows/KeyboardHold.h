#pragma once

#include "core/async/Timer.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace lumnara {

/// The session's keyboard, which one of our windows holds at a time. Under X11 it is grabbed, since the
/// Board's windows are none of the window manager's; elsewhere the window asks for the focus.
class KeyboardHold {
public:
    explicit KeyboardHold(async::Loop& loop) : loop_(loop) {}

    /// The keys come to `window` from now on. While another program has the keyboard, as with an open menu,
    /// it is asked for again and again for a second. The window is shown.
    void take(QWidget& window);
    /// Gives the keyboard back if it is this window that has it.
    void release(QWidget& window);
    bool isHeldBy(const QWidget& window) const { return holder_ == &window && !retry_; }

private:
    bool grab();

    async::Loop& loop_;
    QPointer<QWidget> holder_;
    std::unique_ptr<async::Repeating> retry_;
    int attemptsLeft_ = 0;
};

} // namespace lumnara
