#include "core/async/Signal.h"

#include <algorithm>

namespace lumnara::async {

Subscription::Subscription(std::weak_ptr<detail::SlotList> list, std::shared_ptr<detail::SlotBase> slot)
    : list_(std::move(list)),
      slot_(std::move(slot)) {}

Subscription& Subscription::operator=(Subscription&& other) noexcept {
    if (this == &other) return *this;
    cancel();
    list_ = std::move(other.list_);
    slot_ = std::move(other.slot_);
    return *this;
}

void Subscription::cancel() {
    // Taken out first: the subscriber's closure may go with the slot and lead back here.
    const auto slot = std::exchange(slot_, nullptr);
    if (!slot) return;
    slot->connected = false;
    if (const auto list = list_.lock()) std::erase(*list, slot);
}

} // namespace lumnara::async
