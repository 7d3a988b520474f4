#include "app/qt/windows/LayerShell.h"

#include <QGuiApplication>
#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>

#include <algorithm>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

namespace lumnara {
namespace {

/// The first that tell their connector, or know integer scales.
constexpr std::uint32_t outputVersion = 4;
constexpr std::uint32_t compositorVersion = 4;

template <class Bound>
Bound* bound(wl_registry* registry, std::uint32_t name, const wl_interface& interface,
             std::uint32_t version) {
    return static_cast<Bound*>(wl_registry_bind(registry, name, &interface, version));
}

constexpr wl_output_listener outputListener{
    .geometry = [](void*, wl_output*, auto...) {},
    .mode = [](void*, wl_output*, auto...) {},
    .done = [](void*, wl_output*) {},
    .scale = [](void*, wl_output*, std::int32_t) {},
    .name = [](void* connector, wl_output*,
               const char* name) { *static_cast<std::string*>(connector) = name; },
    .description = [](void*, wl_output*, const char*) {},
};

} // namespace

LayerShell::LayerShell(async::Loop& loop) {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) return;
    display_ = wl_display_connect(nullptr);
    if (!display_) return;
    static constexpr wl_registry_listener listener{
        .global =
            [](void* self, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t version) {
                static_cast<LayerShell*>(self)->found(registry, name, interface, version);
            },
        .global_remove =
            [](void* self, wl_registry*, std::uint32_t name) {
                const auto gone = static_cast<LayerShell*>(self)->outputs_.extract(name);
                if (gone) wl_output_release(gone.mapped().output);
            },
    };
    wl_registry_add_listener(wl_display_get_registry(display_), &listener, this);
    wl_display_roundtrip(display_);
    wl_display_roundtrip(display_); // the outputs, bound by now, tell their names
    watch_ = loop.watchReadable(wl_display_get_fd(display_), [this] { readEvents(); });
}

/// With the connection goes what was made over it.
LayerShell::~LayerShell() {
    watch_.reset();
    if (display_) wl_display_disconnect(display_);
}

void LayerShell::found(wl_registry* registry, std::uint32_t name, const std::string& interface,
                       std::uint32_t version) {
    if (interface == wl_compositor_interface.name && version >= compositorVersion) {
        compositor_ = bound<wl_compositor>(registry, name, wl_compositor_interface, compositorVersion);
    } else if (interface == wl_shm_interface.name) {
        shm_ = bound<wl_shm>(registry, name, wl_shm_interface, 1);
    } else if (interface == zwlr_layer_shell_v1_interface.name) {
        shell_ = bound<zwlr_layer_shell_v1>(registry, name, zwlr_layer_shell_v1_interface, 1);
    } else if (interface == wl_output_interface.name && version >= outputVersion) {
        Output& entry = outputs_[name];
        entry.output = bound<wl_output>(registry, name, wl_output_interface, outputVersion);
        wl_output_add_listener(entry.output, &outputListener, &entry.connector);
    }
}

void LayerShell::readEvents() {
    if (wl_display_dispatch(display_) >= 0) {
        wl_display_flush(display_);
    } else {
        watch_.reset(); // the compositor is gone, and with it all that there is to do
    }
}

wl_output* LayerShell::outputNamed(const std::string& connector) const {
    for (const auto& [name, entry] : outputs_)
        if (entry.connector == connector) return entry.output;
    return nullptr;
}

wl_buffer* LayerShell::bufferOf(const QImage& picture) const {
    const auto size = static_cast<std::size_t>(picture.sizeInBytes());
    const int file = ::memfd_create("lumnara", MFD_CLOEXEC);
    if (file < 0) return nullptr;
    wl_buffer* buffer = nullptr;
    if (::ftruncate(file, static_cast<off_t>(size)) == 0 &&
        ::pwrite(file, picture.constBits(), size, 0) == static_cast<ssize_t>(size)) {
        wl_shm_pool* pool = wl_shm_create_pool(shm_, file, static_cast<std::int32_t>(size));
        buffer = wl_shm_pool_create_buffer(pool, 0, picture.width(), picture.height(),
                                           static_cast<std::int32_t>(picture.bytesPerLine()),
                                           WL_SHM_FORMAT_ARGB8888);
        wl_shm_pool_destroy(pool);
    }
    ::close(file);
    return buffer;
}

} // namespace lumnara
