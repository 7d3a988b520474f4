#pragma once

#include "core/async/Trigger.h"
#include "core/platform/ewmh/EwmhDesktops.h"
#include "core/platform/ewmh/EwmhWindows.h"
#include "core/platform/linux/DesktopArranging.h"

#include <memory>
#include <vector>

namespace lumnara {

/// Arranges the desktops of an EWMH window manager, to which a desktop is an index: what stands on the
/// desktops is moved from index to index, and their identities and names with it. Windows that are on all
/// desktops stay there.
class EwmhDesktopArranging : public DesktopArranging {
public:
    EwmhDesktopArranging(std::shared_ptr<X11Connection> connection, std::shared_ptr<EwmhDesktops> desktops);

    std::string windowManager() const override { return desktops_->root().windowManager(); }
    async::Task<> add(DisplayID display) override;
    /// Brings the desktop behind all others first, since a window manager only takes away the last one.
    async::Task<> remove(SpaceID id, SpaceID heir) override;
    async::Task<> arrange(DisplayID display, std::vector<SpaceID> order) override;
    std::vector<SpaceID> keepable(std::vector<SpaceID> desired) const override { return desired; }
    std::string keptOrderRule() const override { return {}; }

private:
    using Indexes = std::vector<std::size_t>;
    /// What is asked of the window manager in one go, and how it was before.
    struct Move {
        std::vector<EwmhPlacement> before;
        std::vector<EwmhPlacement> after;
        std::size_t currentBefore = 0;
        std::size_t current = 0;
        xcb_window_t active = XCB_WINDOW_NONE;
    };

    async::Task<bool> moveAll(Indexes targets);
    async::Task<bool> changeCount(std::size_t count);
    Move planMove(const Indexes& targets);
    void request(const Move& move);
    async::Task<> bringLatecomers(const Move& move);
    void takeBack(const Move& move);
    bool hasCome(const Move& move);
    async::Task<bool> comesTrue(std::function<bool()> condition);

    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<EwmhDesktops> desktops_;
    /// Of its own: what the desktops have read is theirs.
    EwmhRoot root_;
    EwmhWindows windows_;
    async::Trigger changed_;
    async::Subscription propertyChanged_;
};

} // namespace lumnara
