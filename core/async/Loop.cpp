#include "core/async/Loop.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lumnara::async {

void Wake::cancel() noexcept {
    if (loop_ == nullptr) return;
    if (due_) {
        loop_->timers_.erase(loop_->placeOf(*this));
        due_.reset();
    } else
        Loop::unlinkReady(*this);
    loop_ = nullptr;
}

bool Inbox::post(std::function<void()> work) {
    std::lock_guard guard(mutex_);
    if (driver_ == nullptr) return false;
    items_.push_back(std::move(work));
    if (items_.size() == 1) driver_->wakeUp();
    return true;
}

Loop::Loop(Driver& driver) : driver_(driver), inbox_(std::make_shared<Inbox>()) {
    inbox_->driver_ = &driver;
    ready_.previous_ = ready_.next_ = &ready_;
    roots_.previous = roots_.next = &roots_;
}

Loop::~Loop() {
    std::vector<std::function<void()>> dropped;
    {
        std::lock_guard guard(inbox_->mutex_);
        inbox_->driver_ = nullptr;
        dropped.swap(inbox_->items_);
    }
    // What the work holds may end tasks and timers or post again: it goes while the loop stands, unlocked.
    dropped.clear();
    arrived_.clear();
    while (hasRoots()) {
        Root& root = *roots_.next;
        removeRoot(root);
        root.destroy(root);
    }
    driver_.disarmTimer();
}

void Loop::ready(Wake& wake) {
    wake.cancel();
    pushReady(wake);
    askForTurn();
}

void Loop::at(Nanos due, Wake& wake) {
    wake.cancel();
    wake.loop_ = this;
    wake.due_ = due;
    wake.sequence_ = ++sequence_;
    timers_.insert(placeOf(wake), &wake);
    if (timers_.back() == &wake) driver_.armTimer(due);
}

bool Loop::turn() {
    turnAsked_ = false;
    collectInbox();
    collectDue();
    // Whatever runs below may open a modal platform loop: the driver must know of the rest before that.
    if (hasTimer())
        driver_.armTimer(nextDue());
    else
        driver_.disarmTimer();
    if (!arrived_.empty() || hasReady()) askForTurn();

    const std::uint64_t last = sequence_;
    bool ran = false;
    for (std::size_t left = arrived_.size(); left > 0 && !arrived_.empty(); --left) {
        const std::function<void()> work = std::move(arrived_.front());
        arrived_.pop_front();
        ran = true;
        work();
    }
    while (hasReady() && ready_.next_->sequence_ <= last) {
        Wake& wake = *ready_.next_;
        unlinkReady(wake);
        wake.loop_ = nullptr;
        ran = true;
        wake.fire_(wake);
    }
    return ran;
}

bool Loop::idle() const {
    std::lock_guard guard(inbox_->mutex_);
    return !hasReady() && arrived_.empty() && inbox_->items_.empty();
}

void Loop::addRoot(Root& root) {
    root.previous = roots_.previous;
    root.next = &roots_;
    roots_.previous->next = &root;
    roots_.previous = &root;
}

void Loop::removeRoot(Root& root) {
    if (root.next == nullptr) return;
    root.previous->next = root.next;
    root.next->previous = root.previous;
    root.previous = root.next = nullptr;
}

void Loop::pushReady(Wake& wake) {
    wake.loop_ = this;
    wake.sequence_ = ++sequence_;
    wake.previous_ = ready_.previous_;
    wake.next_ = &ready_;
    ready_.previous_->next_ = &wake;
    ready_.previous_ = &wake;
}

void Loop::unlinkReady(Wake& wake) {
    wake.previous_->next_ = wake.next_;
    wake.next_->previous_ = wake.previous_;
    wake.previous_ = wake.next_ = nullptr;
}

std::vector<Wake*>::iterator Loop::placeOf(const Wake& wake) {
    const auto moment = [](const Wake* each) { return std::pair(*each->due_, each->sequence_); };
    return std::ranges::lower_bound(timers_, moment(&wake), std::greater(), moment);
}

void Loop::askForTurn() {
    if (std::exchange(turnAsked_, true)) return;
    driver_.wakeUp();
}

void Loop::collectInbox() {
    std::vector<std::function<void()>> items;
    {
        std::lock_guard guard(inbox_->mutex_);
        items.swap(inbox_->items_);
    }
    std::move(items.begin(), items.end(), std::back_inserter(arrived_));
}

void Loop::collectDue() {
    const Nanos now = driver_.now();
    while (hasTimer() && nextDue() <= now) {
        Wake& wake = *timers_.back();
        wake.cancel();
        pushReady(wake);
    }
}

} // namespace lumnara::async
