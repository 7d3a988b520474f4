#include "core/platform/choose/X11Session.h"

#include "core/base/Failure.h"
#include "core/platform/ewmh/EwmhPlatform.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/platform/x11/X11Connection.h"

namespace lumnara {

namespace {

std::shared_ptr<X11Connection> connectTo(async::Loop& loop, const Environment& environment) {
    const auto display = environment.get("DISPLAY");
    if (!display) throw WindowManagerError(WindowManagerError::Case::noDisplay, {});
    return X11Connection::open(loop, *display);
}

} // namespace

X11Session::X11Session(async::Loop& loop, const Environment& environment)
    : connection_(connectTo(loop, environment)) {}

std::optional<std::string> X11Session::i3Socket() const {
    // An i3 that was killed leaves its property to the window manager that comes after it.
    if (ewmhWindowManager(connection_).value_or("i3") != "i3") return std::nullopt;
    try {
        return connection_->text(
            connection_->requestProperty(connection_->root(), connection_->atoms().i3SocketPath));
    } catch (const Failure&) {
        return std::nullopt;
    }
}

} // namespace lumnara
