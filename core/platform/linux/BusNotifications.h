#pragma once

#include "core/async/Loop.h"
#include "core/platform/linux/Bus.h"
#include "core/platform/linux/Environment.h"
#include "core/seams/UserNotifications.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

/// Notifications over the session's D-Bus, as freedesktop.org lays them down in version 1.2
/// (org.freedesktop.Notifications). It connects at the first one, and again when the bus was lost.
class BusNotifications : public UserNotifications {
public:
    BusNotifications(async::Loop& loop, const Environment& environment)
        : loop_(loop),
          environment_(environment) {}

    async::Task<> deliver(UserNotification notification) override;
    async::Task<> close(std::string identifier) override;

private:
    bool connect();

    async::Loop& loop_;
    const Environment environment_;
    std::shared_ptr<Bus> bus_;
    /// The service's own numbers, by identifier.
    std::map<std::string, std::uint32_t> numbers_;
};

} // namespace lumnara
