#include "tests/support/RecordingNotifications.h"

#include "core/async/Task.h"

#include <utility>

namespace lumnara::testing {

async::Task<> RecordingNotifications::deliver(UserNotification notification) {
    if (!isAvailable) throw NotificationsUnavailable();
    delivered.push_back(std::move(notification));
    co_return;
}

async::Task<> RecordingNotifications::close(std::string identifier) {
    std::erase_if(delivered, [&](const auto& each) { return each.identifier == identifier; });
    co_return;
}

} // namespace lumnara::testing
