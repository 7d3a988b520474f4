#include "core/platform/x11/EwmhSpaceActivator.h"

#include "core/platform/WindowManagerError.h"

namespace lumnara {

namespace {

/// A window manager announces a change within a millisecond; one that takes this long hangs or refuses.
constexpr double patience = 0.3;

} // namespace

EwmhSpaceActivator::EwmhSpaceActivator(std::shared_ptr<X11Connection> connection,
                                       std::shared_ptr<EwmhDesktops> desktops)
    : connection_(std::move(connection)),
      desktops_(std::move(desktops)),
      propertyChanged_(connection_->propertyChanged.subscribe([this](const auto& event) {
          if (event.atom == connection_->atoms().netCurrentDesktop) changed_.fire();
      })) {}

async::Task<> EwmhSpaceActivator::activate(const Space& target, const DisplayID&) {
    const auto reading = desktops_->read();
    const auto index = reading.indexOf(target.id);
    if (!index)
        throw WindowManagerError(WindowManagerError::Case::refused, desktops_->root().windowManager(),
                                 "the desktop is gone");
    // Nothing is announced when nothing changes.
    if (*index == reading.current) co_return;
    desktops_->root().requestDesktop(*index);
    co_await changed_.wait(patience);
}

} // namespace lumnara
