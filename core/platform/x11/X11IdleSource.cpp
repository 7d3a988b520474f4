#include "core/platform/x11/X11IdleSource.h"

#include "core/base/Failure.h"

#include <utility>
#include <xcb/screensaver.h>

namespace lumnara {

std::unique_ptr<X11IdleSource> X11IdleSource::on(std::shared_ptr<X11Connection> connection) {
    const auto* extension = xcb_get_extension_data(connection->xcb(), &xcb_screensaver_id);
    if (extension == nullptr || !extension->present) return nullptr;
    return std::unique_ptr<X11IdleSource>(new X11IdleSource(std::move(connection)));
}

std::optional<double> X11IdleSource::secondsSinceInput() {
    try {
        const auto info = connection_->reply<xcb_screensaver_query_info_reply_t>(
            xcb_screensaver_query_info(connection_->xcb(), connection_->root()));
        if (!info) return std::nullopt;
        return info->ms_since_user_input / 1000.0;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

} // namespace lumnara
