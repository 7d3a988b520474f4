#include "core/platform/linux/BusNotifications.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/platform/linux/Spawn.h"
#include "tests/linux/Fifo.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <systemd/sd-bus.h>
#include <vector>

namespace lumnara {
namespace {

/// A session bus of its own, on a socket in a folder.
class PrivateBus {
public:
    explicit PrivateBus(const std::filesystem::path& folder)
        : address_("unix:path=" + (folder / "bus").string()) {
        testing::Fifo ready(folder / "ready");
        daemon_ =
            spawnChild({.command = {"/bin/sh", "-c",
                                    "exec dbus-daemon --session --nofork --nopidfile --address=" + address_ +
                                        " --print-address=1 >" + ready.path()}});
        ready.line();
    }
    ~PrivateBus() { stop(); }

    void stop() {
        if (!daemon_.pidfd.isOpen()) return;
        ::kill(daemon_.pid, SIGKILL);
        testing::awaitReadable(daemon_.pidfd.get());
        exitOf(daemon_, true);
        daemon_.pidfd.reset();
    }
    const std::string& address() const { return address_; }

private:
    const std::string address_;
    SpawnedChild daemon_;
};

/// A notification service as small as it can be. It hears its bus from the loop.
class NotificationService {
public:
    NotificationService(async::Loop& loop, const std::string& address) {
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, address.c_str());
        sd_bus_set_bus_client(bus_, 1);
        sd_bus_start(bus_);
        sd_bus_add_object(bus_, nullptr, "/org/freedesktop/Notifications", &NotificationService::receive,
                          this);
        isReady_ = sd_bus_request_name(bus_, "org.freedesktop.Notifications", 0) >= 0;
        watch_ = loop.watchReadable(sd_bus_get_fd(bus_), [this] {
            while (sd_bus_process(bus_, nullptr) > 0) {
            }
        });
    }
    ~NotificationService() {
        watch_.reset();
        sd_bus_flush_close_unref(bus_);
    }
    NotificationService(const NotificationService&) = delete;

    bool isReady() const { return isReady_; }
    std::vector<std::string> heard;
    bool refuses = false;

private:
    static int receive(sd_bus_message* message, void* self, sd_bus_error*) {
        return static_cast<NotificationService*>(self)->answer(message);
    }
    int answer(sd_bus_message* message) {
        if (refuses) return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_FAILED, "no screen");
        if (sd_bus_message_is_method_call(message, "org.freedesktop.Notifications", "CloseNotification")) {
            std::uint32_t number = 0;
            sd_bus_message_read(message, "u", &number);
            heard.push_back("close " + std::to_string(number));
            return sd_bus_reply_method_return(message, "");
        }
        const char *app = "", *icon = "", *title = "", *body = "";
        std::uint32_t replaces = 0;
        sd_bus_message_read(message, "susss", &app, &replaces, &icon, &title, &body);
        heard.push_back(std::string(sd_bus_message_get_signature(message, 1)) + " " +
                        std::to_string(replaces) + " " + title + ": " + body);
        return sd_bus_reply_method_return(message, "u", replaces != 0 ? replaces : ++last_);
    }

    sd_bus* bus_ = nullptr;
    std::unique_ptr<async::FdWatch> watch_;
    bool isReady_ = false;
    std::uint32_t last_ = 6;
};

async::Task<> deliverInto(UserNotifications& notifications, UserNotification notification,
                          std::string& outcome) {
    try {
        co_await notifications.deliver(std::move(notification));
        outcome = "shown";
    } catch (const NotificationsUnavailable& error) {
        outcome = error.sentence();
    }
}

class BusNotificationsTest : public ::testing::Test {
protected:
    std::string outcomeOf(const std::string& identifier, const std::string& body) {
        std::string outcome;
        const auto task =
            async::spawn(loop_, deliverInto(notifications_,
                                            {.identifier = identifier, .title = "T", .body = body}, outcome));
        return loop_.runUntil([&] { return !outcome.empty(); }, 20) ? outcome : "never ended";
    }
    static constexpr const char* unavailable = "No service of this session shows notifications.";

    testing::TemporaryFolder folder_;
    async::PollLoop loop_;
    PrivateBus bus_{folder_.path()};
    BusNotifications notifications_{loop_, Environment({{"DBUS_SESSION_BUS_ADDRESS", bus_.address()}})};
};

TEST_F(BusNotificationsTest, OneIdentifierIsOneNotification) {
    NotificationService service(loop_, bus_.address());
    ASSERT_TRUE(service.isReady());
    EXPECT_EQ(outcomeOf("a", "1 < 2 & 3"), "shown");
    EXPECT_EQ(outcomeOf("b", "x"), "shown");
    EXPECT_EQ(outcomeOf("a", "y"), "shown");
    const auto closing = async::spawn(loop_, notifications_.close("a"));
    ASSERT_TRUE(loop_.runUntil([&] { return service.heard.size() == 4; }, 20));
    EXPECT_EQ(service.heard,
              (std::vector<std::string>{"susssasa{sv}i 0 T: 1 &lt; 2 &amp; 3", "susssasa{sv}i 0 T: x",
                                        "susssasa{sv}i 7 T: y", "close 7"}));
    service.refuses = true;
    EXPECT_EQ(outcomeOf("c", ""), unavailable);
}

TEST_F(BusNotificationsTest, WithoutAServiceOrABusItSaysSoAndRecovers) {
    EXPECT_EQ(outcomeOf("a", ""), unavailable) << "nobody has the name";
    {
        NotificationService late(loop_, bus_.address());
        ASSERT_TRUE(late.isReady());
        EXPECT_EQ(outcomeOf("a", ""), "shown");
    }
    bus_.stop();
    EXPECT_EQ(outcomeOf("a", ""), unavailable);
    std::string outcome;
    BusNotifications nowhere(loop_, Environment({}));
    const auto task = async::spawn(loop_, deliverInto(nowhere, {}, outcome));
    ASSERT_TRUE(loop_.runUntil([&] { return !outcome.empty(); }, 20));
    EXPECT_EQ(outcome, unavailable);
}

} // namespace
} // namespace lumnara
