#include "core/platform/ewmh/EwmhNamePublisher.h"

#include "core/base/Failure.h"

namespace lumnara {

namespace {

/// So many corrections on each other's heels are a quarrel.
constexpr int mostCorrections = 5;
constexpr double peaceSeconds = 5;

} // namespace

EwmhNamePublisher::EwmhNamePublisher(std::shared_ptr<X11Connection> connection,
                                     std::shared_ptr<EwmhDesktops> desktops)
    : connection_(std::move(connection)),
      desktops_(std::move(desktops)),
      propertyChanged_(
          connection_->propertyChanged.subscribe([this](const auto& event) { noteChange(event.atom); })),
      batchEnded_(connection_->batchEnded.subscribe([this] {
          if (stale_ && wanted_) showNames();
      })) {}

void EwmhNamePublisher::publish(const std::vector<PublishedDesktop>& desktops) {
    std::map<std::string, std::string> wanted;
    for (const auto& desktop : desktops)
        if (!desktop.name.empty()) wanted[desktop.spaceKey] = desktop.name;
    if (wanted == wanted_ && !stale_) return;
    if (wanted != wanted_) corrections_ = 0;
    wanted_ = std::move(wanted);
    showNames();
}

void EwmhNamePublisher::noteChange(xcb_atom_t property) {
    const auto& atoms = connection_->atoms();
    if (property == atoms.netSupportingWmCheck) corrections_ = 0;
    if (property == atoms.netDesktopNames) {
        const async::Nanos now = connection_->loop().now();
        if (async::secondsOf(now - lastWritten_) > peaceSeconds) corrections_ = 0;
        lastWritten_ = now;
    }
    stale_ |= property == atoms.netSupportingWmCheck || property == atoms.netDesktopNames ||
              property == atoms.netNumberOfDesktops;
}

void EwmhNamePublisher::showNames() {
    stale_ = desktops_->isHeld();
    if (stale_ || corrections_ == mostCorrections) return;
    try {
        if (desktops_->showNames(*wanted_)) ++corrections_;
    } catch (const Failure&) {
        stale_ = true;
    }
}

} // namespace lumnara
