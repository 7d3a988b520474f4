#include "core/platform/i3sway/SwayIdleSource.h"

#include <cstdint>
#include <ext-idle-notify-v1-client-protocol.h>
#include <filesystem>
#include <kde-idle-client-protocol.h>
#include <string>
#include <string_view>
#include <utility>
#include <wayland-client.h>

namespace lumnara {

namespace {

constexpr std::uint32_t idleAfter = 1000; // milliseconds

/// An absolute WAYLAND_DISPLAY stays as it is.
std::optional<std::filesystem::path> compositorSocket(const Environment& environment) {
    const auto name = environment.get("WAYLAND_DISPLAY");
    if (!name) return std::nullopt;
    return std::filesystem::path(environment.get("XDG_RUNTIME_DIR").value_or("")) / *name;
}

} // namespace

struct SwayIdleSource::Listeners {
    static SwayIdleSource& source(void* data) { return *static_cast<SwayIdleSource*>(data); }

    static constexpr wl_registry_listener registry{
        .global = [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                     std::uint32_t) { source(data).offer(registry, name, interface); },
        .global_remove = [](void*, wl_registry*, std::uint32_t) {},
    };
    static constexpr ext_idle_notification_v1_listener notification{
        .idled = [](void* data, ext_idle_notification_v1*) { source(data).setIdle(true); },
        .resumed = [](void* data, ext_idle_notification_v1*) { source(data).setIdle(false); },
    };
    static constexpr org_kde_kwin_idle_timeout_listener timeout{
        .idle = [](void* data, org_kde_kwin_idle_timeout*) { source(data).setIdle(true); },
        .resumed = [](void* data, org_kde_kwin_idle_timeout*) { source(data).setIdle(false); },
    };
};

void SwayIdleSource::Disconnect::operator()(wl_display* display) const { wl_display_disconnect(display); }

void SwayIdleSource::Destroy::operator()(wl_proxy* proxy) const { wl_proxy_destroy(proxy); }

std::unique_ptr<SwayIdleSource> SwayIdleSource::connect(async::Loop& loop, const Environment& environment) {
    const auto socket = compositorSocket(environment);
    std::unique_ptr<wl_display, Disconnect> display(socket ? wl_display_connect(socket->c_str()) : nullptr);
    if (!display) return nullptr;
    return std::unique_ptr<SwayIdleSource>(new SwayIdleSource(loop, std::move(display)));
}

SwayIdleSource::SwayIdleSource(async::Loop& loop, std::unique_ptr<wl_display, Disconnect> display)
    : loop_(loop),
      display_(std::move(display)),
      watch_(loop.watchReadable(wl_display_get_fd(display_.get()), [this] { read(); })) {
    wl_registry_add_listener(keep(wl_display_get_registry(display_.get())), &Listeners::registry, this);
    wl_display_flush(display_.get());
}

SwayIdleSource::~SwayIdleSource() { watch_.reset(); }

void SwayIdleSource::read() {
    wl_display* display = display_.get();
    while (wl_display_prepare_read(display) != 0) wl_display_dispatch_pending(display);
    wl_display_read_events(display);
    wl_display_dispatch_pending(display);
    wl_display_flush(display);
    if (wl_display_get_error(display) == 0) return;
    watch_.reset();
    subscribed_ = false;
}

void SwayIdleSource::offer(wl_registry* registry, std::uint32_t name, std::string_view interface) {
    const auto bind = [&](const wl_interface& wanted) {
        return wl_registry_bind(registry, name, &wanted, 1);
    };
    if (interface == wl_seat_interface.name && !seat_) {
        seat_ = keep(static_cast<wl_seat*>(bind(wl_seat_interface)));
    } else if (interface == ext_idle_notifier_v1_interface.name && !notifier_) {
        notifier_ = keep(static_cast<ext_idle_notifier_v1*>(bind(ext_idle_notifier_v1_interface)));
    } else if (interface == org_kde_kwin_idle_interface.name && !oldNotifier_) {
        oldNotifier_ = keep(static_cast<org_kde_kwin_idle*>(bind(org_kde_kwin_idle_interface)));
    }
    subscribe();
}

void SwayIdleSource::subscribe() {
    if (subscribed_ || !seat_ || (!notifier_ && !oldNotifier_)) return;
    subscribed_ = true;
    if (notifier_) {
        ext_idle_notification_v1_add_listener(
            keep(ext_idle_notifier_v1_get_idle_notification(notifier_, idleAfter, seat_)),
            &Listeners::notification, this);
    } else {
        org_kde_kwin_idle_timeout_add_listener(
            keep(org_kde_kwin_idle_get_idle_timeout(oldNotifier_, seat_, idleAfter)), &Listeners::timeout,
            this);
    }
}

void SwayIdleSource::setIdle(bool idle) {
    lastInput_ = idle ? std::optional(loop_.now() - async::wholeNanos(idleAfter / 1000.0)) : std::nullopt;
}

std::optional<double> SwayIdleSource::secondsSinceInput() {
    if (!subscribed_) return std::nullopt;
    return lastInput_ ? async::secondsOf(loop_.now() - *lastInput_) : 0;
}

} // namespace lumnara
