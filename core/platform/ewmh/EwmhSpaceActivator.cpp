#include "core/platform/ewmh/EwmhSpaceActivator.h"

#include "core/async/Task.h"
#include "core/switching/SwitchError.h"

namespace lumnara {

namespace {

/// A window manager announces a change within a millisecond; one that takes this long hangs or refuses.
constexpr double patience = 0.3;

bool isHidden(const EwmhReading& reading, SpaceID desktop) {
    const auto index = reading.indexOf(desktop);
    return index && *index != reading.current;
}

} // namespace

EwmhSpaceActivator::EwmhSpaceActivator(std::shared_ptr<X11Connection> connection,
                                       std::shared_ptr<EwmhDesktops> desktops)
    : connection_(std::move(connection)),
      desktops_(std::move(desktops)),
      propertyChanged_(connection_->propertyChanged.subscribe([this](const auto& event) {
          if (event.atom == connection_->atoms().netCurrentDesktop) changed_.fire();
      })) {}

async::Task<std::optional<SpaceID>> EwmhSpaceActivator::activate(const Space& target, const DisplayID&) {
    // Whoever switches has just read what the display shows, and reads again to see the switch land: one
    // more reading in between would only cost time.
    const bool isKnownHidden = isHidden(desktops_->lastReading(), target.id);
    const auto& reading = isKnownHidden ? desktops_->lastReading() : desktops_->read();
    const auto index = reading.indexOf(target.id);
    if (!index) throw SwitchError(SwitchError::Case::targetNotInSnapshot);
    // Nothing is announced when nothing changes.
    if (*index == reading.current) co_return target.id;
    desktops_->root().requestDesktop(*index);
    co_await changed_.wait(patience);
    co_return std::nullopt;
}

} // namespace lumnara
