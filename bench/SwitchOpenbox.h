#pragma once

#include "bench/ShellSwitch.h"
#include "core/platform/ewmh/EwmhPlatform.h"
#include "core/platform/x11/X11Connection.h"
#include "tests/session/Session.h"
#include "tests/support/TemporaryFolder.h"

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

inline void measureOpenbox(Report& report) {
    const testing::XSession quiet(testing::WindowManager::openbox);
    BareEwmhClient bare(quiet.display());
    const testing::XSession session(testing::WindowManager::openbox);
    BareEwmhClient beside(session.display());
    const testing::TemporaryFolder folder;
    async::PollLoop loop;
    Platform platform = ewmhPlatform(X11Connection::open(loop, session.display()), folder.path());
    testing::WholeShell shell(loop, platform, folder.path());
    std::vector<std::string> keys;
    for (const Desktop& desktop : shell.state.catalog().desktops()) keys.push_back(desktop.spaceKey);

    std::uint32_t ours = 0, theirs = 0;
    const PairedTimes pairs = timeInTurns(
        switchPairs,
        [&] {
            const double time = microsecondsOfSwitch(loop, shell, keys.at(ours = 1 - ours));
            if (beside.current() != ours) throw std::runtime_error("the switch did not land");
            return time;
        },
        [&] { return medianMicroseconds(1, [&] { bare.switchTo(theirs = 1 - theirs); }); });
    std::vector<double> spawned;
    for (int round = 0; round < 51; ++round) {
        theirs = 1 - theirs;
        spawned.push_back(medianMicroseconds(1, [&] {
            quiet.start({"wmctrl", "-s", std::to_string(theirs)})->waitForExit();
            if (!testing::waitUntil([&] { return bare.current() == theirs; }))
                throw std::runtime_error("the spawned switch did not land");
        }));
    }
    reportSwitches(report, "openbox", pairs, spawned);
}

} // namespace lumnara::bench
