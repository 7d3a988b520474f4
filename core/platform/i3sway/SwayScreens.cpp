#include "core/platform/i3sway/SwayScreens.h"

#include <utility>

namespace lumnara {

namespace {

/// sway writes "Unknown" for what a monitor doesn't tell.
bool isTold(const std::string& text) { return !text.empty() && text != "Unknown"; }

std::string nameOf(const IpcOutputReply& output) {
    if (!isTold(output.model)) return output.name;
    return isTold(output.make) ? output.make + " " + output.model : output.model;
}

} // namespace

std::vector<ScreenInfo> SwayScreens::screens() try {
    std::vector<ScreenInfo> screens;
    for (const IpcSession::Display& display : session_.displays()) {
        screens.push_back({.uuid = display.uuid,
                           .connector = display.output.name,
                           .name = nameOf(display.output),
                           .frame = display.output.rect,
                           .scale = display.output.scale,
                           .isBuiltIn = isPanelConnector(display.output.name)});
    }
    return distinctlyNamed(std::move(screens));
} catch (const WindowManagerError&) {
    return {};
}

std::optional<std::string> SwayScreens::displayUnderPointer() try {
    for (const IpcSession::Display& display : session_.displays())
        if (display.focused) return display.uuid;
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

std::string SwayScreens::identity(const IpcOutputReply& output) {
    if (!isTold(output.serial)) return output.name;
    return output.make + " " + output.model + " " + output.serial;
}

} // namespace lumnara
