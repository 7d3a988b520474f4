#include "app/qt/QtDriver.h"

#include "core/async/Loop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QSocketNotifier>

#include <algorithm>

namespace lumnara {
namespace {

/// The longest wait that is asked of Qt at once; the loop arms the timer again after it.
constexpr std::int64_t longestWaitMilliseconds = 24 * 60 * 60 * 1000;

class SocketWatch final : public async::FdWatch {
public:
    SocketWatch(int fd, std::function<void()> onReadable)
        : notifier_(new QSocketNotifier(fd, QSocketNotifier::Read)),
          firing_(std::make_shared<Firing>(Firing{std::move(onReadable), false})) {
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_, [firing = firing_] {
            firing->running = true;
            firing->onReadable();
            firing->running = false;
        });
    }
    ~SocketWatch() override {
        notifier_->setEnabled(false);
        // Inside its own callback Qt still stands on the notifier.
        if (firing_->running) {
            notifier_->deleteLater();
        } else {
            delete notifier_;
        }
    }

private:
    struct Firing {
        std::function<void()> onReadable;
        bool running;
    };

    QSocketNotifier* notifier_;
    std::shared_ptr<Firing> firing_;
};

} // namespace

void QtDriver::attach(async::Loop& loop) {
    loop_ = &loop;
    wakeUp();
}

void QtDriver::wakeUp() {
    if (!posted_.exchange(true)) QCoreApplication::postEvent(this, new QEvent(QEvent::User));
}

void QtDriver::armTimer(async::Nanos due) {
    if (timer_.isActive() && due == due_) return;
    due_ = due;
    // Rounded up: a timer that fires early would turn the loop for nothing.
    const std::int64_t milliseconds = ((due - now()).count() + 999'999) / 1'000'000;
    timer_.start(static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, longestWaitMilliseconds)),
                 Qt::PreciseTimer, this);
}

void QtDriver::disarmTimer() { timer_.stop(); }

std::unique_ptr<async::FdWatch> QtDriver::watchReadable(int fd, std::function<void()> onReadable) {
    return std::make_unique<SocketWatch>(fd, std::move(onReadable));
}

void QtDriver::customEvent(QEvent*) {
    posted_ = false;
    if (loop_) loop_->turn();
}

void QtDriver::timerEvent(QTimerEvent*) {
    timer_.stop();
    if (loop_) loop_->turn();
}

} // namespace lumnara
