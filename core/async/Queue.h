#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace lumnara::async {

/// A worker thread that runs what is posted to it, one after the other.
class SerialQueue {
public:
    /// `name` is the thread's name in a debugger; the system shows its first 15 bytes.
    explicit SerialQueue(std::string name);
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    /// Runs what was posted, then ends the thread.
    ~SerialQueue();

    /// Any thread. `work` must not throw.
    void post(std::function<void()> work);
    /// Blocks until all that was posted so far has run. Any thread but the queue's own.
    void drain();

private:
    void run();

    const std::string name_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> items_;
    std::uint64_t posted_ = 0;
    std::uint64_t finished_ = 0;
    bool closed_ = false;
    std::thread thread_;
};

} // namespace lumnara::async
