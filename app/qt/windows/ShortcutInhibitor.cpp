#include "app/qt/windows/ShortcutInhibitor.h"

#include <QEvent>
#include <QGuiApplication>
#include <QWindow>
#include <keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

#include <cstdint>
#include <map>
#include <string_view>

namespace lumnara {

/// The toolkit's connection, on an event queue of our own. What the compositor told is taken in at the next
/// call; it told of its globals before anything it tells of a window that is shown later.
class ShortcutInhibitor::Connection {
public:
    Connection(wl_display* display, wl_seat* seat)
        : display_(display),
          seat_(seat),
          queue_(wl_display_create_queue(display)) {
        static constexpr wl_registry_listener listener{
            .global = [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
                         std::uint32_t) { static_cast<Connection*>(self)->found(registry, name, interface); },
            .global_remove = [](void*, wl_registry*, std::uint32_t) {},
        };
        auto* own = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(own), queue_);
        registry_ = wl_display_get_registry(own);
        wl_proxy_wrapper_destroy(own);
        wl_registry_add_listener(registry_, &listener, this);
    }
    Connection(const Connection&) = delete;
    ~Connection() {
        if (manager_) zwp_keyboard_shortcuts_inhibit_manager_v1_destroy(manager_);
        wl_registry_destroy(registry_);
        wl_event_queue_destroy(queue_);
    }

    /// A second inhibitor of one surface would be an error that ends the connection.
    void inhibit(QWindow& window) {
        wl_display_dispatch_queue_pending(display_, queue_);
        auto* surface = static_cast<wl_surface*>(
            QGuiApplication::platformNativeInterface()->nativeResourceForWindow("surface", &window));
        if (!manager_ || !surface || held_.contains(&window)) return;
        held_[&window] =
            zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(manager_, surface, seat_);
        wl_display_flush(display_);
    }

    void release(const QWindow& window) {
        const auto held = held_.extract(&window);
        if (!held) return;
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(held.mapped());
        wl_display_flush(display_);
    }

private:
    void found(wl_registry* registry, std::uint32_t name, std::string_view interface) {
        const wl_interface& wanted = zwp_keyboard_shortcuts_inhibit_manager_v1_interface;
        if (manager_ || interface != wanted.name) return;
        manager_ = static_cast<zwp_keyboard_shortcuts_inhibit_manager_v1*>(
            wl_registry_bind(registry, name, &wanted, 1));
    }

    wl_display* display_;
    wl_seat* seat_;
    wl_event_queue* queue_;
    wl_registry* registry_ = nullptr;
    zwp_keyboard_shortcuts_inhibit_manager_v1* manager_ = nullptr;
    std::map<const QWindow*, zwp_keyboard_shortcuts_inhibitor_v1*> held_;
};

ShortcutInhibitor::ShortcutInhibitor() {
    QPlatformNativeInterface* native = QGuiApplication::platformNativeInterface();
    if (!native || !QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return;
    auto* display = static_cast<wl_display*>(native->nativeResourceForIntegration("wl_display"));
    auto* seat = static_cast<wl_seat*>(native->nativeResourceForIntegration("wl_seat"));
    if (display && seat) connection_ = std::make_unique<Connection>(display, seat);
}

ShortcutInhibitor::~ShortcutInhibitor() = default;

void ShortcutInhibitor::hold(QWindow& window) {
    if (!connection_) return;
    window.installEventFilter(this);
    connection_->inhibit(window);
}

void ShortcutInhibitor::release(QWindow& window) {
    if (!connection_) return;
    window.removeEventFilter(this);
    connection_->release(window);
}

/// The window has a surface from its showing to its hiding, another one each time.
bool ShortcutInhibitor::eventFilter(QObject* watched, QEvent* event) {
    auto& window = static_cast<QWindow&>(*watched);
    if (event->type() == QEvent::Expose && window.isVisible()) connection_->inhibit(window);
    if (event->type() == QEvent::Hide) connection_->release(window);
    return false;
}

} // namespace lumnara
