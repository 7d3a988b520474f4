#pragma once

#include "core/async/Loop.h"
#include "tests/session/Session.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace lumnara::testing {

/// The least of an EWMH window manager: it keeps properties, and does what messages ask of it but for those
/// of the kinds that it refuses. It runs on the test's own loop.
class ObstinateWindowManager {
public:
    ObstinateWindowManager(async::Loop& loop, const std::string& display, std::uint32_t desktops)
        : xcb_(xcb_connect(display.c_str(), nullptr), &xcb_disconnect),
          root_(xcb_setup_roots_iterator(xcb_get_setup(xcb_.get())).data->root) {
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
        xcb_change_window_attributes(xcb_.get(), root_, XCB_CW_EVENT_MASK, &mask);
        const xcb_window_t check = makeWindow();
        for (const xcb_window_t window : {root_, check}) set(window, "_NET_SUPPORTING_WM_CHECK", {check});
        xcb_change_property(xcb_.get(), XCB_PROP_MODE_REPLACE, check, atom("_NET_WM_NAME"), XCB_ATOM_STRING,
                            8, 9, "obstinate");
        set(root_, "_NET_NUMBER_OF_DESKTOPS", {desktops});
        set(root_, "_NET_CURRENT_DESKTOP", {0});
        flush();
        watch_ = loop.watchReadable(xcb_get_file_descriptor(xcb_.get()), [this] { obey(); });
    }

    /// A window of its own on that desktop.
    xcb_window_t addWindow(std::uint32_t desktop) {
        clients_.push_back(makeWindow());
        set(clients_.back(), "_NET_WM_DESKTOP", {desktop});
        set(root_, "_NET_CLIENT_LIST", clients_);
        flush();
        return clients_.back();
    }
    std::uint32_t desktopOf(xcb_window_t window) { return desktops_.at(window); }

    /// The messages that it doesn't follow, by their names.
    std::set<std::string> refuses;
    /// Called when a message has come.
    std::function<void(const std::string& name)> onMessage;

private:
    xcb_window_t makeWindow() {
        const xcb_window_t window = xcb_generate_id(xcb_.get());
        xcb_create_window(xcb_.get(), XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        return window;
    }
    xcb_atom_t atom(const std::string& name) {
        const auto cookie =
            xcb_intern_atom(xcb_.get(), 0, static_cast<std::uint16_t>(name.size()), name.data());
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(xcb_.get(), cookie, nullptr), &std::free);
        names_[reply->atom] = name;
        return reply->atom;
    }
    void set(xcb_window_t window, const std::string& name, const std::vector<std::uint32_t>& items) {
        xcb_change_property(xcb_.get(), XCB_PROP_MODE_REPLACE, window, atom(name), XCB_ATOM_CARDINAL, 32,
                            static_cast<std::uint32_t>(items.size()), items.data());
        if (name == "_NET_WM_DESKTOP") desktops_[window] = items.at(0);
    }
    void flush() {
        const auto cookie = xcb_get_input_focus(xcb_.get());
        std::free(xcb_get_input_focus_reply(xcb_.get(), cookie, nullptr));
    }
    void obey() {
        while (auto* event = xcb_poll_for_event(xcb_.get())) {
            const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> owner(event, &std::free);
            if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) continue;
            const auto& message = *reinterpret_cast<xcb_client_message_event_t*>(event);
            const std::string name = names_[message.type];
            if (onMessage) onMessage(name);
            if (!name.empty() && !refuses.contains(name)) set(message.window, name, {message.data.data32[0]});
        }
        flush();
    }

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> xcb_;
    xcb_window_t root_;
    std::vector<xcb_window_t> clients_;
    std::map<xcb_window_t, std::uint32_t> desktops_;
    std::map<xcb_atom_t, std::string> names_;
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace lumnara::testing
