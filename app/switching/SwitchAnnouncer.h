#pragma once

#include "core/async/Signal.h"
#include "core/catalog/Desktop.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Tells of each display whose current desktop is another one than at the reading before. A display that has
/// just appeared is not told of. Main thread.
class SwitchAnnouncer {
public:
    /// The desktop that is current now, and the key of the Space that its display showed before: the same one
    /// for a desktop that was linked or unlinked where it stands.
    using Switched = async::Signal<const Desktop&, const std::string&>;

    /// One change is told once: of a link group, the first display that comes to it.
    Switched desktopSwitched;
    /// A further display of a link group came to it.
    Switched displayFollowed;

    /// After each reading.
    void announce(const std::vector<DisplayDesktops>& displays);

private:
    struct Shown {
        std::string key;
        std::string spaceKey;
    };

    /// By display.
    std::map<std::string, Shown> lastCurrent_;
    std::optional<std::string> lastAnnouncedKey_;
};

} // namespace lumnara
