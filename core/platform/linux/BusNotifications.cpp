#include "core/platform/linux/BusNotifications.h"

#include "core/async/Task.h"
#include "core/async/Trigger.h"

#include <string_view>
#include <systemd/sd-bus.h>
#include <utility>

namespace lumnara {

namespace {

BusMember notificationsMember(const char* member) {
    return {.service = "org.freedesktop.Notifications",
            .path = "/org/freedesktop/Notifications",
            .interface = "org.freedesktop.Notifications",
            .member = member,
            .startsService = true};
}

/// The body is a little XML.
std::string escapedMarkup(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else
            escaped += c;
    }
    return escaped;
}

} // namespace

bool BusNotifications::connect() {
    if (!bus_ || !bus_->isOpen()) bus_ = Bus::session(loop_, environment_);
    return bus_ != nullptr;
}

async::Task<> BusNotifications::deliver(UserNotification notification) {
    if (!connect()) throw NotificationsUnavailable();
    const auto write = [&](sd_bus_message& message) {
        constexpr int serversTime = -1; // until it goes by itself
        const std::string body = escapedMarkup(notification.body);
        sd_bus_message_append(&message, "susssasa{sv}i", "Lumnara", numbers_[notification.identifier],
                              "lumnara", notification.title.c_str(), body.c_str(), 0, 1, "sound-name", "s",
                              "message-new-instant", serversTime);
    };
    async::Trigger answered;
    std::uint32_t number = 0; // which no notification has
    const auto onAnswer = [&](sd_bus_message* reply) {
        if (reply) sd_bus_message_read(reply, "u", &number);
        answered.fire();
    };
    async::Task<bool> answer = answered.wait(2 * Bus::patience);
    const auto call = bus_->call(notificationsMember("Notify"), write, onAnswer);
    co_await std::move(answer);
    if (number == 0) throw NotificationsUnavailable();
    numbers_[notification.identifier] = number;
}

async::Task<> BusNotifications::close(std::string identifier) {
    const auto found = numbers_.find(identifier);
    if (found == numbers_.end() || !connect()) co_return;
    const std::uint32_t number = found->second;
    numbers_.erase(found);
    async::Trigger answered;
    async::Task<bool> answer = answered.wait(2 * Bus::patience);
    const auto call = bus_->call(
        notificationsMember("CloseNotification"),
        [number](sd_bus_message& message) { sd_bus_message_append(&message, "u", number); },
        [&](sd_bus_message*) { answered.fire(); });
    co_await std::move(answer);
}

} // namespace lumnara
