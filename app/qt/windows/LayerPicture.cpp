#include "app/qt/windows/LayerPicture.h"

#include "app/qt/windows/LayerShell.h"

#include <wayland-client.h>
#include <wlr-layer-shell-unstable-v1-client-protocol.h>

#include <functional>
#include <utility>

namespace lumnara {

/// A surface from its making, through the moment at which the compositor lets it show its picture, to its
/// end.
class LayerPicture::Surface {
public:
    Surface(LayerShell& shell, wl_output* output, const QImage& picture, QPoint place,
            std::function<void()> onShown)
        : buffer_(shell.bufferOf(picture)),
          surface_(wl_compositor_create_surface(shell.compositor_)),
          layer_(zwlr_layer_shell_v1_get_layer_surface(shell.shell_, surface_, output,
                                                       ZWLR_LAYER_SHELL_V1_LAYER_OVERLAY, "lumnara")),
          onShown_(std::move(onShown)) {
        static constexpr zwlr_layer_surface_v1_listener listener{
            .configure = [](void* self, zwlr_layer_surface_v1*, std::uint32_t serial, std::uint32_t,
                            std::uint32_t) { static_cast<Surface*>(self)->configured(serial); },
            .closed = [](void*, zwlr_layer_surface_v1*) {}, // with its output; it is taken down in its time
        };
        zwlr_layer_surface_v1_add_listener(layer_, &listener, this);
        const QSize size = picture.deviceIndependentSize().toSize();
        zwlr_layer_surface_v1_set_size(layer_, static_cast<std::uint32_t>(size.width()),
                                       static_cast<std::uint32_t>(size.height()));
        zwlr_layer_surface_v1_set_anchor(layer_, ZWLR_LAYER_SURFACE_V1_ANCHOR_TOP |
                                                     ZWLR_LAYER_SURFACE_V1_ANCHOR_LEFT);
        zwlr_layer_surface_v1_set_margin(layer_, place.y(), 0, 0, place.x());
        zwlr_layer_surface_v1_set_exclusive_zone(layer_, -1); // from the output's edge, not from a bar's
        wl_region* nowhere = wl_compositor_create_region(shell.compositor_);
        wl_surface_set_input_region(surface_, nowhere);
        wl_region_destroy(nowhere);
        wl_surface_set_buffer_scale(surface_, qRound(picture.devicePixelRatio()));
        wl_surface_commit(surface_);
    }
    Surface(const Surface&) = delete;
    ~Surface() {
        zwlr_layer_surface_v1_destroy(layer_);
        wl_surface_destroy(surface_);
        if (buffer_) wl_buffer_destroy(buffer_);
    }

private:
    void configured(std::uint32_t serial) {
        zwlr_layer_surface_v1_ack_configure(layer_, serial);
        const auto tell = std::exchange(onShown_, {});
        if (tell) wl_surface_attach(surface_, buffer_, 0, 0);
        wl_surface_commit(surface_);
        if (tell) tell();
    }

    wl_buffer* buffer_;
    wl_surface* surface_;
    zwlr_layer_surface_v1* layer_;
    std::function<void()> onShown_;
};

LayerPicture::LayerPicture(LayerShell& shell) : shell_(shell) {}

LayerPicture::~LayerPicture() { hide(); }

void LayerPicture::show(const QImage& picture, const std::string& output, QPoint place) {
    wl_output* on = shell_.isOffered() ? shell_.outputNamed(output) : nullptr;
    if (!on) return hide();
    next_ = std::make_unique<Surface>(shell_, on, picture, place, [this] { shown_ = std::move(next_); });
    wl_display_flush(shell_.display_);
}

void LayerPicture::hide() {
    shown_.reset();
    next_.reset();
    if (shell_.isOffered()) wl_display_flush(shell_.display_);
}

} // namespace lumnara
