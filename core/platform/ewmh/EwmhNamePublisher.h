#pragma once

#include "core/platform/ewmh/EwmhDesktops.h"
#include "core/seams/DesktopNamePublisher.h"

#include <map>
#include <memory>
#include <optional>

namespace lumnara {

/// Keeps the user's names in _NET_DESKTOP_NAMES. A window manager writes its own names there when it
/// starts, so names that are replaced by others are set again, but only a few times in a row: one that
/// insists has its way until it has been quiet for a while.
class EwmhNamePublisher : public DesktopNamePublisher {
public:
    EwmhNamePublisher(std::shared_ptr<X11Connection> connection, std::shared_ptr<EwmhDesktops> desktops);

    void publish(const std::vector<PublishedDesktop>& desktops) override;

private:
    void noteChange(xcb_atom_t property);
    void showNames();

    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<EwmhDesktops> desktops_;
    /// Nothing before the first publication.
    std::optional<std::map<std::string, std::string>> wanted_;
    /// What the window manager shows may be something else.
    bool stale_ = false;
    int corrections_ = 0;
    async::Nanos lastWritten_{};
    async::Subscription propertyChanged_;
    async::Subscription batchEnded_;
};

} // namespace lumnara
