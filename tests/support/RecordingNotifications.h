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

    async::Task<> deliver(UserNotification notification) override;
    async::Task<> close(std::string identifier) override;
};

} // namespace lumnara::testing
