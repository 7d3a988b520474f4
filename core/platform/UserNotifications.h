#pragma once

#include "core/async/Task.h"

#include <string>

namespace lumnara {

struct UserNotification {
    /// One of the same identifier that still shows is replaced.
    std::string identifier;
    std::string title;
    std::string body;

    bool operator==(const UserNotification&) const = default;
};

/// The desktop's notifications, shown at once and with the default sound. Owned by Platform, called on the
/// main thread.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    /// Shows it. Throws a Failure where the session has no notifications.
    virtual async::Task<> deliver(UserNotification notification) = 0;
    /// Takes it away if it still shows.
    virtual async::Task<> close(std::string identifier) = 0;
};

} // namespace lumnara
