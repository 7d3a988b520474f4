#pragma once

#include "core/model/Geometry.h"

#include <cstdint>
#include <memory>
#include <string>

namespace lumnara {

/// How a window of the program's own is made. The numbers are the window system's own.
struct WindowForm {
    Rect contentRect;
    std::uint32_t styleMask = 0;
    std::uint32_t backing = 0;
    bool isDeferred = false;
    bool isReleasedWhenClosed = true;
    double alpha = 1;
    bool hasClearBackground = false;
    bool isOpaque = true;
    bool hasShadow = true;
    bool ignoresMouseEvents = false;
    int level = 0;
    std::uint32_t collectionBehavior = 0;
    std::string title{};
    bool isExcludedFromWindowsMenu = false;

    bool operator==(const WindowForm&) const = default;
};

/// A window of the program's own, which goes with this object.
class OwnWindow {
public:
    virtual ~OwnWindow() = default;

    /// The window server's number for it, read afresh; 0 when the server has none.
    virtual std::int64_t windowNumber() = 0;
    virtual void orderFrontRegardless() = 0;
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;
    virtual void close() = 0;
};

/// The program as the session's window system knows it. Main thread, and
/// outlives the windows it made; a session whose windows can't be put on a Space has none.
class OwnApplication {
public:
    virtual ~OwnApplication() = default;

    virtual std::int32_t pid() = 0;
    virtual std::unique_ptr<OwnWindow> makeWindow(const WindowForm& form) = 0;

    /// Asks to become the active application, whoever is it now.
    virtual void activateIgnoringOtherApps() = 0;
    /// Whether the system wants an active application to yield before another becomes active (macOS 14 on).
    virtual bool mustYieldActivation() = 0;
    virtual void yieldActivation(std::int32_t toPid) = 0;
};

} // namespace lumnara
