#include "core/platform/x11/X11Connection.h"

#include "core/platform/linux/WindowManagerError.h"

#include <algorithm>
#include <cstring>
#include <poll.h>
#include <utility>
#include <xcb/randr.h>
#include <xcb/xcbext.h>

namespace lumnara {

namespace {

/// A server that takes longer hangs, and with it everything on the screen.
constexpr double serverPatience = 0.5;
/// Longer than any property we read, in 32-bit units.
constexpr std::uint32_t wholeProperty = 1U << 20U;

constexpr std::array<std::pair<xcb_atom_t X11Atoms::*, std::string_view>, 13> atomNames{{
    {&X11Atoms::utf8String, "UTF8_STRING"},
    {&X11Atoms::netSupportingWmCheck, "_NET_SUPPORTING_WM_CHECK"},
    {&X11Atoms::netWmName, "_NET_WM_NAME"},
    {&X11Atoms::netNumberOfDesktops, "_NET_NUMBER_OF_DESKTOPS"},
    {&X11Atoms::netCurrentDesktop, "_NET_CURRENT_DESKTOP"},
    {&X11Atoms::netDesktopNames, "_NET_DESKTOP_NAMES"},
    {&X11Atoms::netClientList, "_NET_CLIENT_LIST"},
    {&X11Atoms::netWmDesktop, "_NET_WM_DESKTOP"},
    {&X11Atoms::netActiveWindow, "_NET_ACTIVE_WINDOW"},
    {&X11Atoms::netWmPid, "_NET_WM_PID"},
    {&X11Atoms::lumnaraDesktopUuids, "_LUMNARA_DESKTOP_UUIDS"},
    {&X11Atoms::i3SocketPath, "I3_SOCKET_PATH"},
    {&X11Atoms::edid, "EDID"},
}};

WindowManagerError serverGone() { return {WindowManagerError::Case::noDisplay, "The X server"}; }

} // namespace

X11Connection::DispatchWake::DispatchWake(X11Connection& owner)
    : Wake([](Wake& wake) { static_cast<DispatchWake&>(wake).connection.dispatch(); }),
      connection(owner) {}

std::shared_ptr<X11Connection> X11Connection::open(async::Loop& loop, const std::string& display) {
    return std::shared_ptr<X11Connection>(new X11Connection(loop, display));
}

X11Connection::X11Connection(async::Loop& loop, const std::string& display)
    : loop_(loop),
      xcb_(nullptr),
      wake_(*this) {
    int screenNumber = 0;
    xcb_.reset(xcb_connect(display.c_str(), &screenNumber));
    if (xcb_connection_has_error(xcb())) throw serverGone();
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb()));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i) xcb_screen_next(&screens);
    root_ = screens.data->root;
    internAtoms();
    selectEvents();
    watch_ = loop_.watchReadable(xcb_get_file_descriptor(xcb()), [this] { dispatch(); });
}

X11Connection::~X11Connection() = default;

void X11Connection::internAtoms() {
    std::array<xcb_intern_atom_cookie_t, atomNames.size()> cookies{};
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        const auto name = atomNames[i].second;
        cookies[i] = xcb_intern_atom(xcb(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    }
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        const auto interned = reply<xcb_intern_atom_reply_t>(cookies[i]);
        if (!interned) throw serverGone();
        atoms_.*atomNames[i].first = interned->atom;
    }
}

void X11Connection::selectEvents() {
    // RandR has no event for a monitor that was only redefined; the root's configuration tells of that.
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(xcb(), root_, XCB_CW_EVENT_MASK, &mask);
    const auto* randr = xcb_get_extension_data(xcb(), &xcb_randr_id);
    if (randr != nullptr && randr->present) {
        firstRandrEvent_ = randr->first_event;
        // The server sends a client only the events of the version it has asked for.
        reply<xcb_randr_query_version_reply_t>(xcb_randr_query_version(xcb(), 1, 5));
        xcb_randr_select_input(xcb(), root_,
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_PROPERTY);
    }
    roundTrip();
}

void* X11Connection::awaitReply(unsigned sequence) {
    const auto deadline = loop_.now() + async::wholeNanos(serverPatience);
    ++roundTrips_;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    xcb_flush(xcb());
    while (!xcb_poll_for_reply(xcb(), sequence, &answer, &error)) {
        if (loop_.now() >= deadline) {
            xcb_discard_reply(xcb(), sequence);
            throw WindowManagerError(WindowManagerError::Case::notAnswering, "The X server");
        }
        pollfd answered{xcb_get_file_descriptor(xcb()), POLLIN, 0};
        ::poll(&answered, 1, static_cast<int>(async::secondsOf(deadline - loop_.now()) * 1000) + 1);
    }
    std::free(error);
    deliverLater(xcb_poll_for_queued_event);
    if (xcb_connection_has_error(xcb())) {
        std::free(answer);
        throw serverGone();
    }
    return answer;
}

/// What has left the socket wakes us no more.
void X11Connection::deliverLater(NextEvent next) {
    while (auto* event = next(xcb())) enqueue(event);
    if (!pending_.empty() && !wake_.parked()) loop_.ready(wake_);
}

void X11Connection::takeArrived() { deliverLater(xcb_poll_for_event); }

void X11Connection::roundTrip() { reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(xcb())); }

bool X11Connection::failed(xcb_void_cookie_t cookie) const {
    return X11Reply<xcb_generic_error_t>(xcb_request_check(xcb(), cookie)) != nullptr;
}

xcb_get_property_cookie_t X11Connection::requestProperty(xcb_window_t window, xcb_atom_t property) const {
    return xcb_get_property(xcb(), 0, window, property, XCB_ATOM_ANY, 0, wholeProperty);
}

std::optional<std::string> X11Connection::text(xcb_get_property_cookie_t cookie) {
    const auto property = reply<xcb_get_property_reply_t>(cookie);
    if (!property || property->format != 8) return std::nullopt;
    return std::string(static_cast<const char*>(xcb_get_property_value(property.get())),
                       static_cast<std::size_t>(xcb_get_property_value_length(property.get())));
}

std::vector<std::uint32_t> X11Connection::items(xcb_get_property_cookie_t cookie) {
    const auto property = reply<xcb_get_property_reply_t>(cookie);
    if (!property || property->format != 32) return {};
    std::vector<std::uint32_t> items(static_cast<std::size_t>(xcb_get_property_value_length(property.get())) /
                                     sizeof(std::uint32_t));
    if (!items.empty())
        std::memcpy(items.data(), xcb_get_property_value(property.get()),
                    items.size() * sizeof(std::uint32_t));
    return items;
}

void X11Connection::setText(xcb_window_t window, xcb_atom_t property, std::string_view bytes) const {
    xcb_change_property(xcb(), XCB_PROP_MODE_REPLACE, window, property, atoms_.utf8String, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
    xcb_flush(xcb());
}

void X11Connection::askWindowManager(xcb_window_t window, xcb_atom_t type,
                                     const std::array<std::uint32_t, 2>& data) const {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = type;
    std::ranges::copy(data, message.data.data32);
    xcb_send_event(xcb(), 0, root_, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(xcb());
}

void X11Connection::dispatch() {
    const auto self = shared_from_this(); // a subscriber may let the last other owner go
    // What the first reading of the socket leaves there wakes us again.
    for (auto* event = xcb_poll_for_event(xcb()); event != nullptr; event = xcb_poll_for_queued_event(xcb()))
        enqueue(event);
    const bool gone = xcb_connection_has_error(xcb()) != 0 && watch_ != nullptr;
    if (pending_.empty() && !gone) return;
    while (!pending_.empty()) {
        const auto event = std::move(pending_.front());
        pending_.pop_front();
        deliver(*event);
    }
    if (gone) {
        watch_.reset();
        lost.emit();
    }
    batchEnded.emit();
}

void X11Connection::enqueue(xcb_generic_event_t* event) {
    pending_.emplace_back(event);
    arrived.emit(*event);
}

bool X11Connection::isMonitorChange(const xcb_generic_event_t& event) const {
    const auto type = static_cast<std::uint8_t>(event.response_type & 0x7FU);
    if (type == XCB_CONFIGURE_NOTIFY)
        return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == root_;
    if (firstRandrEvent_ == 0) return false;
    if (type == firstRandrEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY) return true;
    if (type != firstRandrEvent_ + XCB_RANDR_NOTIFY) return false;
    // Of an output's properties only what its monitor tells of itself; a backlight is turned often.
    const auto& notice = reinterpret_cast<const xcb_randr_notify_event_t&>(event);
    return notice.subCode != XCB_RANDR_NOTIFY_OUTPUT_PROPERTY || notice.u.op.atom == atoms_.edid;
}

/// What none of these is may be an error of a request whose outcome shows elsewhere, such as a look at a
/// window that has gone meanwhile.
void X11Connection::deliver(const xcb_generic_event_t& event) {
    if (isMonitorChange(event)) return monitorsChanged.emit();
    switch (event.response_type & 0x7FU) {
    case XCB_PROPERTY_NOTIFY:
        propertyChanged.emit(reinterpret_cast<const xcb_property_notify_event_t&>(event));
        return;
    case XCB_DESTROY_NOTIFY:
        windowDestroyed.emit(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        return;
    case XCB_KEY_PRESS: keyPressed.emit(reinterpret_cast<const xcb_key_press_event_t&>(event)); return;
    case XCB_MAPPING_NOTIFY:
        if (reinterpret_cast<const xcb_mapping_notify_event_t&>(event).request != XCB_MAPPING_POINTER)
            keyboardChanged.emit();
        return;
    default: return;
    }
}

} // namespace lumnara
