#include "core/platform/linux/LoginSession.h"

#include <algorithm>
#include <fmt/format.h>
#include <string_view>
#include <systemd/sd-bus.h>

namespace lumnara {

namespace {

constexpr const char* loginService = "org.freedesktop.login1";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

struct ScreenSaverName {
    const char* service; ///< the interface has the same name
    const char* path;
};
constexpr ScreenSaverName screenSaverNames[] = {
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
    {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
};

/// A service has come, gone or been replaced.
std::string ownerRule(const char* service) {
    return fmt::format("type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
                       "member='NameOwnerChanged',arg0='{}'",
                       service);
}

std::optional<bool> readBoolean(sd_bus_message* message) {
    int value = 0;
    if (!message || sd_bus_message_read(message, "b", &value) <= 0) return std::nullopt;
    return value != 0;
}

} // namespace

class LoginSession::LoginManager {
public:
    explicit LoginManager(Bus& bus) : bus_(bus) {
        restarted_ = bus_.listen(ownerRule(loginService), [this](sd_bus_message&) { findSession(); });
        findSession();
    }

    std::optional<bool> locked;
    std::optional<bool> active;

private:
    void findSession() {
        locked.reset();
        active.reset();
        call_ = bus_.call(
            {loginService, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "GetSession"},
            // The caller's session or, for a program outside of any, the one that the user sees.
            [](sd_bus_message& message) { sd_bus_message_append(&message, "s", "auto"); },
            [this](sd_bus_message* reply) {
                const char* path = nullptr;
                if (reply && sd_bus_message_read(reply, "o", &path) > 0) follow(path);
            });
    }

    void follow(const std::string& path) {
        path_ = path;
        changed_ = bus_.listen(fmt::format("type='signal',sender='{}',path='{}',interface='{}',"
                                           "member='PropertiesChanged'",
                                           loginService, path, propertiesInterface),
                               [this](sd_bus_message&) { readProperties(); });
        readProperties();
    }

    void readProperties() {
        call_ = bus_.call(
            {loginService, path_, propertiesInterface, "GetAll"},
            [](sd_bus_message& message) { sd_bus_message_append(&message, "s", sessionInterface); },
            [this](sd_bus_message* reply) {
                if (!reply || sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "{sv}") <= 0) return;
                while (sd_bus_message_enter_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
                    readProperty(reply);
                    sd_bus_message_exit_container(reply);
                }
            });
    }

    void readProperty(sd_bus_message* entry) {
        const char* name = nullptr;
        sd_bus_message_read(entry, "s", &name);
        std::optional<bool>* wanted = std::string_view(name) == "LockedHint" ? &locked
                                      : std::string_view(name) == "Active"   ? &active
                                                                             : nullptr;
        if (wanted && sd_bus_message_enter_container(entry, SD_BUS_TYPE_VARIANT, "b") > 0) {
            *wanted = readBoolean(entry);
            sd_bus_message_exit_container(entry);
        } else {
            sd_bus_message_skip(entry, "v");
        }
    }

    Bus& bus_;
    std::string path_;
    std::unique_ptr<Bus::Slot> restarted_;
    std::unique_ptr<Bus::Slot> changed_;
    std::unique_ptr<Bus::Slot> call_;
};

class LoginSession::ScreenSaver {
public:
    ScreenSaver(Bus& bus, ScreenSaverName name) : bus_(bus), name_(name) {
        restarted_ = bus_.listen(ownerRule(name.service), [this](sd_bus_message&) {
            active.reset();
            ask();
        });
        changed_ =
            bus_.listen(fmt::format("type='signal',interface='{}',member='ActiveChanged'", name.service),
                        [this](sd_bus_message& message) { active = readBoolean(&message); });
        ask();
    }

    std::optional<bool> active;

private:
    void ask() {
        call_ = bus_.call({name_.service, name_.path, name_.service, "GetActive"}, {},
                          [this](sd_bus_message* reply) { active = readBoolean(reply); });
    }

    Bus& bus_;
    const ScreenSaverName name_;
    std::unique_ptr<Bus::Slot> restarted_;
    std::unique_ptr<Bus::Slot> changed_;
    std::unique_ptr<Bus::Slot> call_;
};

LoginSession::LoginSession(async::Loop& loop, const Environment& environment)
    : system_(Bus::system(loop, environment)),
      session_(Bus::session(loop, environment)) {
    if (system_) loginManager_ = std::make_unique<LoginManager>(*system_);
    if (session_)
        for (const ScreenSaverName& name : screenSaverNames)
            screenSavers_.push_back(std::make_unique<ScreenSaver>(*session_, name));
}

LoginSession::~LoginSession() = default;

bool LoginSession::isScreenLocked() {
    if (loginManager_ && system_->isOpen() && loginManager_->locked.value_or(false)) return true;
    return session_ && session_->isOpen() &&
           std::ranges::any_of(screenSavers_, [](const auto& each) { return each->active.value_or(false); });
}

bool LoginSession::isOnConsole() {
    return !loginManager_ || !system_->isOpen() || loginManager_->active.value_or(true);
}

} // namespace lumnara
