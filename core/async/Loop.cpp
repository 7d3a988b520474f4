#include "core/async/Loop.h"

#include <iterator>
#include <utility>

namespace lumnara::async {

void Wake::cancel() noexcept {
    if (loop_ == nullptr) return;
    if (heapIndex_ != notInHeap)
        loop_->removeTimer(heapIndex_);
    else
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
    heap_.push_back({due, ++sequence_, &wake});
    siftUp(heap_.size() - 1);
    if (heap_.front().wake == &wake) driver_.armTimer(due);
}

bool Loop::turn() {
    turnAsked_ = false;
    collectInbox();
    collectDue();
    // Whatever runs below may open a modal platform loop: the driver must know of the rest before that.
    if (heap_.empty())
        driver_.disarmTimer();
    else
        driver_.armTimer(heap_.front().due);
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
    while (!heap_.empty() && heap_.front().due <= now) {
        Wake& wake = *heap_.front().wake;
        removeTimer(0);
        pushReady(wake);
    }
}

void Loop::placeTimer(std::size_t index, const Timer& timer) {
    heap_[index] = timer;
    timer.wake->heapIndex_ = index;
}

void Loop::siftUp(std::size_t index) {
    const Timer timer = heap_[index];
    while (index > 0) {
        const std::size_t parent = (index - 1) / 2;
        if (!(timer < heap_[parent])) break;
        placeTimer(index, heap_[parent]);
        index = parent;
    }
    placeTimer(index, timer);
}

void Loop::siftDown(std::size_t index) {
    const Timer timer = heap_[index];
    for (;;) {
        std::size_t child = 2 * index + 1;
        if (child >= heap_.size()) break;
        if (child + 1 < heap_.size() && heap_[child + 1] < heap_[child]) ++child;
        if (!(heap_[child] < timer)) break;
        placeTimer(index, heap_[child]);
        index = child;
    }
    placeTimer(index, timer);
}

void Loop::removeTimer(std::size_t index) {
    heap_[index].wake->heapIndex_ = Wake::notInHeap;
    const Timer last = heap_.back();
    heap_.pop_back();
    if (index == heap_.size()) return;
    placeTimer(index, last);
    siftUp(index);
    siftDown(last.wake->heapIndex_);
}

} // namespace lumnara::async
