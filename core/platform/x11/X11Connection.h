#pragma once

#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/platform/x11/X11Atoms.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

struct X11Free {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T> using X11Reply = std::unique_ptr<T, X11Free>;

/// The one connection to the X server that the classes of this room share. Main thread. Events are
/// delivered from the loop, never from inside a reading. Once the server has gone every reading throws
/// and no further event comes.
class X11Connection : public std::enable_shared_from_this<X11Connection> {
public:
    /// Connects to a display (":0"). Throws WindowManagerError::noDisplay.
    static std::shared_ptr<X11Connection> open(async::Loop& loop, const std::string& display);
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    async::Loop& loop() const { return loop_; }
    xcb_connection_t* xcb() const { return xcb_.get(); }
    xcb_window_t root() const { return root_; }
    const X11Atoms& atoms() const { return atoms_; }

    /// The reply to a request, or null when the server answered with an error. Throws WindowManagerError:
    /// noDisplay when the server has gone, notAnswering when it takes longer than half a second.
    template <class T, class Cookie> X11Reply<T> reply(Cookie cookie) {
        return X11Reply<T>(static_cast<T*>(awaitReply(cookie.sequence)));
    }
    /// Returns when the server has carried out all that was asked so far. Throws as reply().
    void roundTrip();
    /// Takes in the events that have reached us, without asking the server: `arrived` has told of whatever
    /// happened before something that another program has told us since.
    void takeArrived();
    /// How often somebody has waited for the server.
    std::uint64_t roundTrips() const { return roundTrips_; }
    /// Whether a checked request without a reply has failed, known after a roundTrip().
    bool failed(xcb_void_cookie_t cookie) const;

    /// Asks for a whole property, of any type; several may be asked for before the first is read.
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, xcb_atom_t property) const;
    /// The bytes of a text property; nothing when it isn't there. Throws as reply().
    std::optional<std::string> text(xcb_get_property_cookie_t cookie);
    /// The 32-bit items of a property; none when it isn't there. Throws as reply().
    std::vector<std::uint32_t> items(xcb_get_property_cookie_t cookie);
    void setText(xcb_window_t window, xcb_atom_t property, std::string_view bytes) const;

    /// Sends the window manager a message about a window or the root, with the first items of its data.
    void askWindowManager(xcb_window_t window, xcb_atom_t type,
                          const std::array<std::uint32_t, 2>& data) const;

    /// An event has come in and is yet to be delivered by the signals below; perhaps within a reading. The
    /// server sends events before the reply to a later request, so a cache that listens here is never older
    /// than a reply.
    async::Signal<const xcb_generic_event_t&> arrived;
    /// Whether such an event tells that monitors have changed.
    bool isMonitorChange(const xcb_generic_event_t& event) const;

    async::Signal<const xcb_property_notify_event_t&> propertyChanged;
    /// A window whose structure events somebody has asked for.
    async::Signal<xcb_window_t> windowDestroyed;
    async::Signal<const xcb_key_press_event_t&> keyPressed;
    async::Signal<> keyboardChanged;
    async::Signal<> monitorsChanged;
    /// The server has gone, and the session with it.
    async::Signal<> lost;
    /// After the others, once for each batch of events.
    async::Signal<> batchEnded;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    struct DispatchWake : async::Wake {
        explicit DispatchWake(X11Connection& owner);
        X11Connection& connection;
    };

    X11Connection(async::Loop& loop, const std::string& display);
    void internAtoms();
    void selectEvents();
    using NextEvent = xcb_generic_event_t* (*)(xcb_connection_t*);

    void* awaitReply(unsigned sequence);
    void deliverLater(NextEvent next);
    void dispatch();
    void enqueue(xcb_generic_event_t* event);
    void deliver(const xcb_generic_event_t& event);

    async::Loop& loop_;
    std::unique_ptr<xcb_connection_t, Disconnect> xcb_;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    X11Atoms atoms_{};
    std::uint8_t firstRandrEvent_ = 0;
    std::uint64_t roundTrips_ = 0;
    std::deque<X11Reply<xcb_generic_event_t>> pending_;
    DispatchWake wake_;
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace lumnara
