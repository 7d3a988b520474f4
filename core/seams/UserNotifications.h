#pragma once

#include "core/async/TaskFwd.h"
#include "core/base/Failure.h"

#include <string>

namespace lumnara {

struct UserNotification {
    /// One of the same identifier that still shows is replaced.
    std::string identifier;
    std::string title;
    std::string body; ///< plain text

    bool operator==(const UserNotification&) const = default;
};

/// The session shows no notifications.
class NotificationsUnavailable : public Failure {
public:
    NotificationsUnavailable() : Failure("No service of this session shows notifications.") {}
};

/// The desktop's notifications, shown at once and with the default sound. Owned by Platform, called on the
/// main thread.
class UserNotifications {
public:
    virtual ~UserNotifications() = default;

    /// Shows it. Throws NotificationsUnavailable.
    virtual async::Task<> deliver(UserNotification notification) = 0;
    /// Takes away the one that this object showed, if it still shows. Never fails.
    virtual async::Task<> close(std::string identifier) = 0;
};

} // namespace lumnara
