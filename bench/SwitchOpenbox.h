#pragma once

#include "bench/Bench.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/platform/choose/ChoosePlatform.h"
#include "core/switching/SpaceSwitcher.h"
#include "tests/session/Session.h"

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <xcb/xcb.h>

namespace lumnara::bench {

/// The least that a verified switch under EWMH costs: the client message, the notification and one look.
class BareEwmhClient {
public:
    explicit BareEwmhClient(const std::string& display)
        : xcb_(xcb_connect(display.c_str(), nullptr)),
          root_(xcb_setup_roots_iterator(xcb_get_setup(xcb_)).data->root) {
        const std::string name = "_NET_CURRENT_DESKTOP";
        const auto cookie = xcb_intern_atom(xcb_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(xcb_, cookie, nullptr), &std::free);
        currentDesktop_ = reply->atom;
        const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(xcb_, root_, XCB_CW_EVENT_MASK, &mask);
        current();
    }
    BareEwmhClient(const BareEwmhClient&) = delete;
    BareEwmhClient& operator=(const BareEwmhClient&) = delete;
    ~BareEwmhClient() { xcb_disconnect(xcb_); }

    void switchTo(std::uint32_t desktop) {
        while (auto* old = xcb_poll_for_event(xcb_)) std::free(old); // what others' switches left over
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = root_;
        message.type = currentDesktop_;
        message.data.data32[0] = desktop;
        xcb_send_event(xcb_, 0, root_,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(xcb_);
        awaitChange();
        if (current() != desktop) throw std::runtime_error("the bare switch did not land");
    }
    std::uint32_t current() {
        const auto cookie = xcb_get_property(xcb_, 0, root_, currentDesktop_, XCB_ATOM_CARDINAL, 0, 1);
        const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
            xcb_get_property_reply(xcb_, cookie, nullptr), &std::free);
        return *static_cast<std::uint32_t*>(xcb_get_property_value(reply.get()));
    }

private:
    void awaitChange() {
        for (bool changed = false; !changed;) {
            const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(xcb_wait_for_event(xcb_),
                                                                                   &std::free);
            if (!event) throw std::runtime_error("the X server has gone");
            changed = (event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY &&
                      reinterpret_cast<xcb_property_notify_event_t*>(event.get())->atom == currentDesktop_;
        }
    }

    xcb_connection_t* xcb_;
    xcb_window_t root_;
    xcb_atom_t currentDesktop_ = XCB_ATOM_NONE;
};

template <class F> double microsecondsOf(F&& call) { return medianMicroseconds(1, std::forward<F>(call)); }

/// The times of our verified switches, of bare ones and of spawned programs, in microseconds.
inline void reportSwitches(Report& report, const std::string& windowManager, std::vector<double> ours,
                           std::vector<double> bares, std::vector<double> spawns) {
    const double verified = medianOf(std::move(ours));
    const double plain = medianOf(std::move(bares));
    const double spawned = medianOf(std::move(spawns));
    report.line(windowManager + " verified, us", verified);
    report.line(windowManager + " bare, us", plain);
    report.line(windowManager + " spawned, us", spawned);
    report.add(windowManager + "_verified_vs_bare", verified / plain, "at most 1.5");
    report.add(windowManager + "_vs_spawned", verified / spawned);
}

inline async::Task<> switchThroughTheDoor(SpaceSwitcher& switcher, std::string key, bool& done) {
    co_await switcher.switchToDesktop(std::move(key));
    done = true;
}

/// Microseconds of one switch as every surface asks for it: by key, from the call to verified.
inline double microsecondsOfSwitch(async::PollLoop& loop, SpaceSwitcher& switcher, const std::string& key) {
    return medianMicroseconds(1, [&] {
        bool done = false;
        const auto handle = async::spawn(loop, switchThroughTheDoor(switcher, key, done));
        loop.runUntil([&done] { return done; }, 5);
    });
}

/// Verified switches on openbox: ours against the bare round trip, and against a spawned `wmctrl -s`. The
/// ratios are ours divided by the yardstick.
inline void measureOpenbox(Report& report) {
    const testing::XSession session(testing::WindowManager::openbox);
    const testing::TemporaryFolder folder;
    BareEwmhClient bare(session.display());
    async::PollLoop loop;
    const ChosenPlatform chosen =
        choosePlatform(loop, WindowSystem::x11, Environment(session.environment()), folder.path());
    SpaceProvider& provider = *chosen.platform.spaceProvider;
    SpaceSwitcher switcher(provider);
    switcher.engineOverride = {chosen.platform.windowManagerEngine.get()};

    std::vector<std::string> keys;
    const SpaceSnapshot atStart = provider.snapshot();
    for (const auto& [space, display] : atStart.allSpaces())
        keys.push_back(atStart.key(space, display.uuid).value());

    std::vector<double> ours, bares, spawns;
    std::uint32_t target = 0;
    const auto landed = [&] { return bare.current() == target; };
    for (int round = 0; round < 301; ++round) {
        target = 1 - target;
        ours.push_back(microsecondsOfSwitch(loop, switcher, keys.at(target)));
        if (!landed()) throw std::runtime_error("the switch did not land");
        target = 1 - target;
        bares.push_back(microsecondsOf([&] { bare.switchTo(target); }));
        loop.runUntil([] { return false; }, 0.001); // what it announced to us
    }
    for (int round = 0; round < 51; ++round) {
        target = 1 - target;
        spawns.push_back(microsecondsOf([&] {
            session.start({"wmctrl", "-s", std::to_string(target)})->waitForExit();
            if (!testing::waitUntil(landed)) throw std::runtime_error("the spawned switch did not land");
        }));
    }

    reportSwitches(report, "openbox", std::move(ours), std::move(bares), std::move(spawns));
}

} // namespace lumnara::bench
