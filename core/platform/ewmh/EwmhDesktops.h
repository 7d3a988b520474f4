#pragma once

#include "core/platform/ewmh/DesktopMemoryFile.h"
#include "core/platform/ewmh/EwmhRoot.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

struct EwmhDesktop {
    SpaceID id;
    std::string uuid;
};

/// The one arrangement of desktops that an EWMH window manager keeps for all monitors.
struct EwmhReading {
    /// In the window manager's order; a reading has at least one.
    std::vector<EwmhDesktop> desktops;
    std::size_t current = 0;

    std::optional<std::size_t> indexOf(SpaceID id) const;
};

/// Gives the desktops of an EWMH window manager an identity, which the window manager has none of: a root
/// property of our own holds a uuid for each, parallel to the index. It outlives the window manager; when
/// the X server was new, the file tells which desktop is which. Main thread.
class EwmhDesktops {
public:
    EwmhDesktops(const std::shared_ptr<X11Connection>& connection, std::filesystem::path memoryFile);

    /// Reads afresh, but only as much as may have changed. The reference holds until the next reading. Throws
    /// WindowManagerError.
    const EwmhReading& read();
    /// The last reading; no desktops before the first. The reference holds until the next one.
    const EwmhReading& lastReading() const { return lastReading_; }
    /// Shows the user's names (by uuid) in place of the window manager's own, and those again where a name
    /// was withdrawn. Returns whether anything had to be changed. Throws WindowManagerError.
    bool showNames(const std::map<std::string, std::string>& wanted);

    EwmhRoot& root() { return root_; }

    /// As long as it stands, readings give what was read last and names are left alone: while desktops are
    /// rearranged, the window manager's indexes and our identities don't agree for some moments.
    std::shared_ptr<const void> hold();
    bool isHeld() const { return !held_.expired(); }
    /// Who the desktops are now, and with it their names: the one at index i is the one that was at
    /// `places[i]`. What lies beyond the last one stays. Throws WindowManagerError.
    void identify(const std::vector<std::size_t>& places);
    /// The desktop that is added next, at this index, is a new one, not one that was taken away from there
    /// before. Throws WindowManagerError.
    void expectNew(std::size_t index);
    /// The desktop that was taken away from this index, behind the last one, does not come back. Throws
    /// WindowManagerError.
    void forget(std::size_t index);

private:
    EwmhState readIdentified();
    std::vector<std::string> uuids() const;
    void remember(const std::vector<std::string>& uuids, const std::vector<std::string>& names);
    void save();

    EwmhRoot root_;
    DesktopMemoryFile file_;
    /// Parallel to the uuids of the root property.
    std::vector<RememberedDesktop> remembered_;
    std::vector<RememberedDesktop> saved_;
    EwmhReading lastReading_;
    std::weak_ptr<const void> held_;
};

} // namespace lumnara
