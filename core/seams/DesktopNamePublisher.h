#pragma once

#include "core/model/SpaceSnapshot.h"

#include <string>
#include <vector>

namespace lumnara {

/// A desktop that the user has named or linked, or that carries anything else worth keeping.
struct PublishedDesktop {
    std::string spaceKey;
    SpaceID space;
    DisplayID display;
    /// The user's name; empty for a desktop without one.
    std::string name;
    bool operator==(const PublishedDesktop&) const = default;
};

/// Tells the window manager what the user calls the desktops, so bars and pagers show it. Owned by
/// Platform, called on the main thread with the whole list after each change; what is already so costs
/// nothing. A window manager that can't be asked now is told when it comes back.
class DesktopNamePublisher {
public:
    virtual ~DesktopNamePublisher() = default;
    virtual void publish(const std::vector<PublishedDesktop>& desktops) = 0;
};

} // namespace lumnara
