#pragma once

#include "core/async/Driver.h"

#include <QBasicTimer>
#include <QObject>

#include <atomic>

namespace lumnara {

namespace async {
class Loop;
}

/// Drives a Loop by Qt's event loop: one posted event however often it is woken, one precise timer.
/// Built after the application object and before the loop; no Qt event may be handled between the end
/// of the loop and the end of this driver.
class QtDriver final : public QObject, public async::RealTimeDriver {
public:
    /// Turns `loop` from now on. Called once.
    void attach(async::Loop& loop);

    void wakeUp() override;
    void armTimer(async::Nanos due) override;
    void disarmTimer() override;
    std::unique_ptr<async::FdWatch> watchReadable(int fd, std::function<void()> onReadable) override;

protected:
    void customEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    async::Loop* loop_ = nullptr;
    QBasicTimer timer_;
    async::Nanos due_{};
    std::atomic<bool> posted_ = false;
};

} // namespace lumnara
