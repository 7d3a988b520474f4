#include "core/platform/x11/X11Screens.h"

#include "core/base/Failure.h"

namespace lumnara {

std::vector<ScreenInfo> X11Screens::screens() try { return monitors_.screens(); } catch (const Failure&) {
    return {};
}

std::optional<Point> X11Screens::pointer() {
    try {
        const auto at = connection_->reply<xcb_query_pointer_reply_t>(
            xcb_query_pointer(connection_->xcb(), connection_->root()));
        if (!at) return std::nullopt;
        return Point{static_cast<double>(at->root_x), static_cast<double>(at->root_y)};
    } catch (const Failure&) {
        return std::nullopt;
    }
}

std::optional<std::string> X11Screens::displayUnderPointer() {
    const auto at = pointer();
    if (!at) return std::nullopt;
    for (const auto& screen : screens()) {
        // The pointer is on a pixel, and a pixel is on one monitor only: the far edges are the neighbour's.
        const auto& frame = screen.frame;
        if (at->x >= frame.x && at->x < frame.x + frame.width && at->y >= frame.y &&
            at->y < frame.y + frame.height)
            return screen.uuid;
    }
    return std::nullopt;
}

std::string X11Screens::identity(const std::string& connector) {
    for (const ScreenInfo& screen : screens())
        if (screen.connector == connector) return screen.uuid;
    return connector;
}

} // namespace lumnara
