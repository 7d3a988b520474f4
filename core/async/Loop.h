#pragma once

#include "core/async/Driver.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace lumnara::async {

class Loop;

/// One parked wake-up. It lives inside an awaiting frame or an owning object and unlinks itself when
/// destroyed, so that a dead owner is never called. Main thread.
class Wake {
public:
    using Fire = void (*)(Wake&);

    explicit Wake(Fire fire) : fire_(fire) {}
    Wake(const Wake&) = delete;
    Wake& operator=(const Wake&) = delete;
    ~Wake() { cancel(); }

    void cancel() noexcept;
    bool parked() const noexcept { return loop_ != nullptr; }

private:
    friend class Loop;
    Fire fire_;
    Loop* loop_ = nullptr;
    std::optional<Nanos> due_;   ///< while it waits for a moment
    std::uint64_t sequence_ = 0; ///< of the call that parked it
    Wake* previous_ = nullptr;
    Wake* next_ = nullptr;
};

/// The thread-safe way into a loop; producers hold it and it outlives the loop in their hands.
class Inbox {
public:
    /// Runs `work` on the main thread, in the order of posting. False when the loop is gone; the work is
    /// then dropped. Any thread.
    bool post(std::function<void()> work);

private:
    friend class Loop;
    std::mutex mutex_;
    std::vector<std::function<void()>> items_;
    Driver* driver_ = nullptr;
};

/// A started task whose frame the loop owns until it ends.
struct Root {
    Root* previous = nullptr;
    Root* next = nullptr;
    void (*destroy)(Root&) = nullptr;
};

/// The main thread's scheduler: a list of what is ready, the timers, an inbox for other threads.
/// Main thread but for inbox()->post. Destroying it frees the frames of all tasks that still wait.
class Loop {
public:
    explicit Loop(Driver& driver);
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;
    ~Loop();

    Nanos now() const { return driver_.now(); }
    Date date() const { return driver_.date(); }
    const std::shared_ptr<Inbox>& inbox() const { return inbox_; }
    std::unique_ptr<FdWatch> watchReadable(int fd, std::function<void()> onReadable) {
        return driver_.watchReadable(fd, std::move(onReadable));
    }

    /// Fires `wake` on the next turn, after what is ready already; replaces an earlier time.
    void ready(Wake& wake);
    /// Fires `wake` at `due`; wakes of one moment fire in the order of these calls. Replaces an earlier time.
    void at(Nanos due, Wake& wake);

    /// Runs what is posted, ready or due at entry; what becomes ready meanwhile waits for the next turn.
    /// Returns whether anything ran. May nest: a modal platform loop inside a resumed task keeps turning
    /// the rest.
    bool turn();

    /// Nothing is posted or ready; timers may still be set.
    bool idle() const;
    bool hasTimer() const { return !timers_.empty(); }
    /// When the next timer is due; only while hasTimer().
    Nanos nextDue() const { return *timers_.back()->due_; }
    std::size_t timerCount() const { return timers_.size(); }

    void addRoot(Root& root);
    void removeRoot(Root& root);
    bool hasRoots() const { return roots_.next != &roots_; }

private:
    friend class Wake;
    bool hasReady() const { return ready_.next_ != &ready_; }
    void pushReady(Wake& wake);
    static void unlinkReady(Wake& wake);
    /// Where it stands among the timers, or is to stand.
    std::vector<Wake*>::iterator placeOf(const Wake& wake);
    void askForTurn();
    void collectInbox();
    void collectDue();

    Driver& driver_;
    std::shared_ptr<Inbox> inbox_;
    std::deque<std::function<void()>> arrived_;
    std::vector<Wake*> timers_; ///< the next one last; there are a few dozen
    Wake ready_{nullptr};       ///< the ring of ready wakes; this one is its end
    Root roots_;                ///< the ring of roots; this one is its end
    std::uint64_t sequence_ = 0;
    bool turnAsked_ = false;
};

} // namespace lumnara::async
