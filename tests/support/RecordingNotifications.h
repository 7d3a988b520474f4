#pragma once

#include "core/seams/UserNotifications.h"

#include <string>
#include <vector>

namespace lumnara::testing {

/// Notes what it is to show, unless it is unavailable.
class RecordingNotifications : public UserNotifications {
public:
    std::vector<UserNotification> delivered;
    bool isAvailable = true;

    async::Task<> deliver(UserNotification notification) override {
        if (!isAvailable) throw NotificationsUnavailable();
        delivered.push_back(std::move(notification));
        co_return;
    }
    async::Task<> close(std::string identifier) override {
        std::erase_if(delivered, [&](const auto& each) { return each.identifier == identifier; });
        co_return;
    }
};

} // namespace lumnara::testing
