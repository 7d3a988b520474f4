#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace lumnara::async {

namespace detail {

struct SlotBase {
    virtual ~SlotBase() = default;
    bool connected = true;
};
using SlotList = std::vector<std::shared_ptr<SlotBase>>;

} // namespace detail

/// Ends a subscription when it goes. It may outlive the signal. Main thread.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    Subscription(std::weak_ptr<detail::SlotList> list, std::shared_ptr<detail::SlotBase> slot);
    Subscription(Subscription&& other) noexcept = default;
    Subscription& operator=(Subscription&& other) noexcept;
    ~Subscription() { cancel(); }

    void cancel();

private:
    std::weak_ptr<detail::SlotList> list_;
    std::shared_ptr<detail::SlotBase> slot_;
};

/// Tells its subscribers, in the order of subscribing. While it emits, a subscriber may subscribe others
/// (they hear the next emission), end any subscription (that one is not called any more) or destroy the
/// signal (nobody else is called). Main thread.
template <class... Args> class Signal {
public:
    Signal() : slots_(std::make_shared<detail::SlotList>()) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() {
        for (const auto& slot : *slots_) slot->connected = false;
    }

    Subscription subscribe(std::function<void(Args...)> call) {
        auto slot = std::make_shared<Slot>(std::move(call));
        slots_->push_back(slot);
        return Subscription(slots_, std::move(slot));
    }

    void emit(Args... args) const {
        const detail::SlotList slots = *slots_;
        for (const auto& slot : slots)
            if (slot->connected) static_cast<const Slot&>(*slot).call(args...);
    }

private:
    struct Slot : detail::SlotBase {
        explicit Slot(std::function<void(Args...)> f) : call(std::move(f)) {}
        std::function<void(Args...)> call;
    };

    std::shared_ptr<detail::SlotList> slots_;
};

/// A value that tells when it changes. A subscriber that sets it again while it is told is safe: each
/// subscriber is given the value as it stands at its call. Main thread.
template <class T> class Observable {
public:
    Observable() = default;
    explicit Observable(T value) : value_(std::move(value)) {}

    const T& get() const { return value_; }
    const T& operator*() const { return value_; }
    const T* operator->() const { return &value_; }

    /// Tells the subscribers only when `value` differs.
    void set(T value) {
        if (value_ == value) return;
        value_ = std::move(value);
        changed_.emit(value_);
    }
    Subscription subscribe(std::function<void(const T&)> call) { return changed_.subscribe(std::move(call)); }

private:
    T value_{};
    Signal<const T&> changed_;
};

} // namespace lumnara::async
