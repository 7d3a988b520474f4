#include "core/async/Queue.h"

#include <pthread.h>
#include <utility>

namespace lumnara::async {

SerialQueue::SerialQueue(std::string name) : name_(std::move(name)), thread_([this] { run(); }) {}

SerialQueue::~SerialQueue() {
    {
        std::lock_guard guard(mutex_);
        closed_ = true;
    }
    changed_.notify_all();
    thread_.join();
}

void SerialQueue::post(std::function<void()> work) {
    {
        std::lock_guard guard(mutex_);
        items_.push_back(std::move(work));
        ++posted_;
    }
    changed_.notify_all();
}

void SerialQueue::drain() {
    std::unique_lock guard(mutex_);
    changed_.wait(guard, [this, last = posted_] { return finished_ >= last; });
}

void SerialQueue::run() {
    ::pthread_setname_np(::pthread_self(), name_.substr(0, 15).c_str());
    std::unique_lock guard(mutex_);
    for (;;) {
        changed_.wait(guard, [this] { return closed_ || !items_.empty(); });
        if (items_.empty()) return;
        std::function<void()> work = std::move(items_.front());
        items_.pop_front();
        guard.unlock();
        work();
        work = nullptr; // what it holds goes before drain() returns, and outside the lock
        guard.lock();
        ++finished_;
        changed_.notify_all();
    }
}

} // namespace lumnara::async
