#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/Screens.h"

namespace lumnara {

/// The outputs of sway, in the points of its layout. Wayland doesn't tell where the pointer is; the focused
/// output stands for it.
class SwayScreens : public Screens {
public:
    explicit SwayScreens(IpcSession& session) : session_(session) {}

    std::vector<ScreenInfo> screens() override;
    std::optional<Point> pointer() override { return std::nullopt; }
    std::optional<std::string> displayUnderPointer() override;

    /// The identity of an output: maker, model and serial number, as sway's own configuration names it; the
    /// connector when the monitor tells no serial number, since two of a kind would be one.
    static std::string identity(const IpcOutputReply& output);

private:
    IpcSession& session_;
};

} // namespace lumnara
