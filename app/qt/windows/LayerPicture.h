#pragma once

#include <QImage>
#include <QPoint>

#include <memory>
#include <string>

namespace lumnara {

class LayerShell;

/// A picture over all windows of an output; see LayerShell, which outlives it.
class LayerPicture {
public:
    explicit LayerPicture(LayerShell& shell);
    LayerPicture(const LayerPicture&) = delete;
    ~LayerPicture();

    /// Puts up a picture (premultiplied ARGB, with a whole device pixel ratio) in place of the one before,
    /// which stands until this one does. `place` is that of its top left corner on the output ("DP-1"), in
    /// logical pixels. On an output that the compositor doesn't know, nothing is to be seen.
    void show(const QImage& picture, const std::string& output, QPoint place);
    void hide();

private:
    class Surface;

    LayerShell& shell_;
    std::unique_ptr<Surface> shown_;
    /// What is to take the place of `shown_`.
    std::unique_ptr<Surface> next_;
};

} // namespace lumnara
