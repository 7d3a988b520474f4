#include "app/overlay/SwitchOverlayController.h"

#include "app/DisplayName.h"
#include "core/text/Text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

const Desktop* desktopOn(const DisplayDesktops& display, const SpaceID& space) {
    const auto found = std::ranges::find_if(
        display.desktops, [&](const Desktop& desktop) { return desktop.space.id == space; });
    return found == display.desktops.end() ? nullptr : &*found;
}

} // namespace

SwitchOverlayController::SwitchOverlayController(const Session& session, OverlaySurfaceFactory makeSurface,
                                                 std::function<bool(const ScreenInfo&)> mayShow)
    : session_(session),
      makeSurface_(std::move(makeSurface)),
      mayShow_(std::move(mayShow)) {
    SwitchAnnouncer& announcer = session_.announcer;
    for (SwitchAnnouncer::Switched* arrival : {&announcer.desktopSwitched, &announcer.displayFollowed})
        subscriptions_.push_back(
            arrival->subscribe([this](const Desktop& desktop, const std::string& before) {
                if (before != desktop.spaceKey) showCard(desktop);
            }));
    subscriptions_.push_back(session_.settings.switchOverlay.subscribe([this](bool isOn) {
        if (!isOn) hideAll();
    }));
    subscriptions_.push_back(session_.settled.subscribe(
        [this](const Desktop&, const auto& entries) { reportUnsettled(entries); }));
}

void SwitchOverlayController::giveWay() {
    for (const auto& panel : panels_)
        if (panel->end && !mayShow_(panel->screen)) hide(*panel);
}

void SwitchOverlayController::showCard(const Desktop& current) {
    const double seconds = session_.settings.switchOverlayDuration.get();
    if (!session_.settings.switchOverlay.get() || !std::isfinite(seconds) || seconds <= 0) return;
    const auto screen = screenOf(current.display);
    // Under a shared arrangement the display may have told of an earlier desktop on another screen.
    for (const auto& panel : panels_)
        if (panel->display == current.display && (!screen || panel->screen.uuid != screen->uuid))
            hide(*panel);
    if (!screen || !mayShow_(*screen)) return;
    Panel& panel = panelOn(*screen);
    panel.display = current.display;
    const bool hasOthers = session_.catalog.displays->size() > 1;
    panel.surface->show(
        {current, hasOthers ? displayNameIn(session_.catalog, current.display) : std::string()}, *screen);
    panel.end = std::make_unique<async::Delayed>(session_.loop, seconds, [this, &panel] { hide(panel); });
}

void SwitchOverlayController::hide(Panel& panel) {
    if (std::exchange(panel.end, nullptr)) panel.surface->hide();
}

void SwitchOverlayController::hideAll() {
    for (const auto& panel : panels_) hide(*panel);
}

/// The screen of its own, or of a shared arrangement the one under the pointer.
std::optional<ScreenInfo> SwitchOverlayController::screenOf(const DisplayID& display) {
    if (!session_.screens) return std::nullopt;
    const std::vector<ScreenInfo> screens = session_.screens->screens();
    std::erase_if(panels_, [&](const auto& panel) {
        return std::ranges::find(screens, panel->screen.uuid, &ScreenInfo::uuid) == screens.end();
    });
    const auto uuid = display.isMain() ? session_.screens->displayUnderPointer() : display.uuid;
    const auto found = std::ranges::find_if(screens, [&](const ScreenInfo& screen) {
        return uuid && text::equalsIgnoringCase(screen.uuid, *uuid);
    });
    return found == screens.end() ? std::nullopt : std::optional(*found);
}

SwitchOverlayController::Panel& SwitchOverlayController::panelOn(const ScreenInfo& screen) {
    const auto known =
        std::ranges::find_if(panels_, [&](const auto& panel) { return panel->screen.uuid == screen.uuid; });
    if (known == panels_.end())
        return *panels_.emplace_back(std::make_unique<Panel>(Panel{screen, makeSurface_(), {}, nullptr}));
    (*known)->screen = screen;
    return **known;
}

/// In one notice: it is one thing that happened.
void SwitchOverlayController::reportUnsettled(const std::vector<SwitchSettle::Entry>& entries) {
    std::string text;
    for (const SwitchSettle::Entry& entry : SwitchSettle::unsettled(entries)) {
        const std::string sentence = sentenceOn(entry);
        if (!text.empty() && !sentence.empty()) text += ' ';
        text += sentence;
    }
    if (!text.empty()) session_.notices.show(std::move(text), briefNoticeSeconds);
}

/// Empty for a display that is gone: it hasn't gone back.
std::string SwitchOverlayController::sentenceOn(const SwitchSettle::Entry& entry) const {
    const DisplayDesktops* display = session_.catalog.display(entry.display.uuid);
    if (!display) return {};
    const Desktop* showing = entry.showing ? desktopOn(*display, *entry.showing) : nullptr;
    if (!showing || !showing->isNamed()) return fmt::format("{} did not stay there.", display->name);
    return fmt::format("{} went back to {}.", display->name, showing->displayName());
}

} // namespace lumnara
