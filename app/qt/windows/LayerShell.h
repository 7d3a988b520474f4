#pragma once

#include "core/async/Loop.h"

#include <QImage>
#include <QPoint>

#include <cstdint>
#include <map>
#include <memory>
#include <string>

struct wl_buffer;
struct wl_compositor;
struct wl_display;
struct wl_output;
struct wl_registry;
struct wl_shm;
struct zwlr_layer_shell_v1;

namespace lumnara {

/// The compositor's layer shell under Wayland (zwlr_layer_shell_v1): by it a picture of ours stands at a
/// place of an output, over every window. It isn't tiled and takes no focus and no click. The toolkit knows
/// only windows; so it is asked over a connection of its own, which waits for the compositor once, when it is
/// made. Main thread.
class LayerShell {
public:
    explicit LayerShell(async::Loop& loop);
    LayerShell(const LayerShell&) = delete;
    ~LayerShell();

    /// Whether there is a compositor that has it.
    bool isOffered() const { return display_ && compositor_ && shm_ && shell_; }

private:
    friend class LayerPicture;

    void found(wl_registry* registry, std::uint32_t name, const std::string& interface,
               std::uint32_t version);
    void readEvents();
    /// Null for an output that the compositor doesn't know.
    wl_output* outputNamed(const std::string& connector) const;
    /// A copy of the picture in memory that the compositor shares; null when there is none to be had.
    wl_buffer* bufferOf(const QImage& picture) const;

    wl_display* display_ = nullptr;
    wl_compositor* compositor_ = nullptr;
    wl_shm* shm_ = nullptr;
    zwlr_layer_shell_v1* shell_ = nullptr;
    /// An output of the compositor, by its connector ("DP-1").
    struct Output {
        wl_output* output = nullptr;
        std::string connector;
    };
    /// By their names in the registry.
    std::map<std::uint32_t, Output> outputs_;
    std::unique_ptr<async::FdWatch> watch_;
};

} // namespace lumnara
