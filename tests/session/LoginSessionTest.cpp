#include "core/platform/linux/LoginSession.h"
#include "core/async/PollLoop.h"
#include "tests/session/Session.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <systemd/sd-bus.h>

namespace lumnara::testing {
namespace {

class BusSession : public Session {
public:
    BusSession() {
        const std::string address = "unix:path=" + (folder() / "bus").string();
        environment_["DBUS_SYSTEM_BUS_ADDRESS"] = environment_["DBUS_SESSION_BUS_ADDRESS"] = address;
        bus_ = start({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address});
        async::PollLoop loop;
        if (!waitUntil([&] { return Bus::system(loop, Environment(environment_)) != nullptr; }))
            fail("dbus-daemon doesn't start", "dbus-daemon");
    }
    void endBus() { bus_.reset(); }

private:
    std::unique_ptr<Child> bus_;
};

constexpr const char* sessionPath = "/org/freedesktop/login1/session/c1";

/// A login manager with one session, and a screen saver.
class Services {
public:
    Services(async::Loop& loop, const Session& session) {
        sd_bus_new(&bus_);
        sd_bus_set_address(bus_, session.environment().at("DBUS_SYSTEM_BUS_ADDRESS").c_str());
        sd_bus_set_bus_client(bus_, 1);
        if (sd_bus_start(bus_) < 0) throw std::runtime_error("the bus can't be reached");
        add("/org/freedesktop/login1", "org.freedesktop.login1.Manager", managerTable.data());
        add(sessionPath, "org.freedesktop.login1.Session", sessionTable.data());
        add("/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver", screenSaverTable.data());
        watch_ = loop.watchReadable(sd_bus_get_fd(bus_), [this] { process(); });
    }
    Services(const Services&) = delete;
    ~Services() {
        watch_.reset();
        sd_bus_flush_close_unref(bus_);
    }

    void own(const char* name) {
        if (sd_bus_request_name(bus_, name, 0) < 0) throw std::runtime_error("the name can't be had");
        process();
    }
    void disown(const char* name) { sd_bus_release_name(bus_, name); }
    void setLocked(bool value) {
        state.locked = value;
        sd_bus_emit_properties_changed(bus_, sessionPath, "org.freedesktop.login1.Session", "LockedHint",
                                       nullptr);
        sd_bus_flush(bus_);
    }
    void setScreenSaver(bool value) {
        state.screenSaverActive = value;
        sd_bus_emit_signal(bus_, "/org/freedesktop/ScreenSaver", "org.freedesktop.ScreenSaver",
                           "ActiveChanged", "b", value ? 1 : 0);
        sd_bus_flush(bus_);
    }

    /// What the services say.
    struct State {
        int locked = 0;
        int active = 1;
        int screenSaverActive = 0;
    } state;

private:
    static int getSession(sd_bus_message* message, void*, sd_bus_error*) {
        return sd_bus_reply_method_return(message, "o", sessionPath);
    }
    static int getActive(sd_bus_message* message, void* state, sd_bus_error*) {
        return sd_bus_reply_method_return(message, "b", static_cast<State*>(state)->screenSaverActive);
    }
    void add(const char* path, const char* interface, const sd_bus_vtable* table) {
        if (sd_bus_add_object_vtable(bus_, nullptr, path, interface, table, &state) < 0)
            throw std::runtime_error("the object can't be offered");
    }
    void process() {
        while (sd_bus_process(bus_, nullptr) > 0) {
        }
    }

    static const std::array<sd_bus_vtable, 3> managerTable;
    static const std::array<sd_bus_vtable, 5> sessionTable;
    static const std::array<sd_bus_vtable, 3> screenSaverTable;

    sd_bus* bus_ = nullptr;
    std::unique_ptr<async::FdWatch> watch_;
};

const std::array<sd_bus_vtable, 3> Services::managerTable{{
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetSession", "s", "o", &Services::getSession, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
}};
const std::array<sd_bus_vtable, 5> Services::sessionTable{{
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Id", "i", nullptr, offsetof(Services::State, active), 0),
    SD_BUS_PROPERTY("LockedHint", "b", nullptr, offsetof(Services::State, locked),
                    SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
    SD_BUS_PROPERTY("Active", "b", nullptr, offsetof(Services::State, active), 0),
    SD_BUS_VTABLE_END,
}};
const std::array<sd_bus_vtable, 3> Services::screenSaverTable{{
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetActive", "", "b", &Services::getActive, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
}};

class LoginSessionTest : public ::testing::Test {
protected:
    bool until(bool locked, bool onConsole) {
        return loop.runUntil(
            [&] { return probe.isScreenLocked() == locked && probe.isOnConsole() == onConsole; }, 10);
    }

    BusSession session;
    async::PollLoop loop;
    Services services{loop, session};
    LoginSession probe{loop, Environment(session.environment())};
};

TEST_F(LoginSessionTest, FollowsTheLoginManagerThroughItsRestart) {
    EXPECT_TRUE(until(false, true)) << "nobody has answered";
    services.state.active = 0;
    services.own("org.freedesktop.login1");
    ASSERT_TRUE(until(false, false));
    services.setLocked(true);
    ASSERT_TRUE(until(true, false));
    services.disown("org.freedesktop.login1");
    ASSERT_TRUE(until(false, true));
    services.own("org.freedesktop.login1");
    ASSERT_TRUE(until(true, false)) << "the lock was set meanwhile";
    services.setLocked(false);
    EXPECT_TRUE(until(false, false));
}

TEST_F(LoginSessionTest, AnyScreenSaverLocksAndOneThatEndsLocksNoMore) {
    services.own("org.freedesktop.ScreenSaver");
    services.setScreenSaver(true);
    ASSERT_TRUE(until(true, true));
    services.state.active = 0;
    services.own("org.freedesktop.login1");
    ASSERT_TRUE(until(true, false)) << "the login manager knows of no lock";
    services.disown("org.freedesktop.ScreenSaver");
    ASSERT_TRUE(until(false, false));
    session.endBus();
    EXPECT_TRUE(until(false, true));
}

TEST(Bus, AnswersEveryCallEvenWhereNobodyDoes) {
    async::PollLoop loop;
    EXPECT_FALSE(Bus::session(loop, Environment(Variables{})));
    EXPECT_FALSE(
        Bus::session(loop, Environment(Variables{{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"}})));
    EXPECT_FALSE(Bus::session(loop, Environment(Variables{{"DBUS_SESSION_BUS_ADDRESS", "no address"}})));
    LoginSession silent(loop, Environment(Variables{{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus"}}));
    EXPECT_FALSE(silent.isScreenLocked());
    EXPECT_TRUE(silent.isOnConsole());

    BusSession session;
    const auto bus = Bus::session(loop, Environment(session.environment()));
    ASSERT_TRUE(bus);
    std::string answers;
    const auto call = [&](BusMember member, const std::string& name) {
        return bus->call(
            member, {}, [&answers, name](sd_bus_message* reply) { answers += name + (reply ? "+ " : "- "); });
    };
    const BusMember id{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"};
    const BusMember nobody{"org.example.Nobody", "/", "org.example.Nobody", "Ask"};
    const BusMember malformed{"not a name", "nor a path", "", ""};
    const auto first = call(id, "id"), second = call(nobody, "nobody"), third = call(malformed, "malformed");
    auto dropped = call(id, "dropped");
    dropped.reset();
    EXPECT_EQ(answers, "") << "never from within the call";
    EXPECT_TRUE(
        loop.runUntil([&] { return answers.size() == std::string("id+ nobody- malformed- ").size(); }, 10));
    EXPECT_NE(answers.find("id+"), std::string::npos);
    EXPECT_NE(answers.find("nobody-"), std::string::npos);
    EXPECT_NE(answers.find("malformed-"), std::string::npos);

    bool lost = false;
    const auto subscription = bus->lost.subscribe([&] { lost = true; });
    const auto last = call(id, "last");
    session.endBus();
    EXPECT_TRUE(loop.runUntil([&] { return lost; }, 10));
    EXPECT_FALSE(bus->isOpen());
    answers.clear();
    const auto late = call(id, "late");
    EXPECT_TRUE(loop.runUntil([&] { return answers == "late- "; }, 10)) << answers;
}

} // namespace
} // namespace lumnara::testing
