#include "core/platform/sim/MacPicture.h"

#include "core/platform/sim/SimulatedMac.h"

#include <algorithm>
#include <cmath>

namespace lumnara {

namespace {

constexpr int ordinaryLayer = 0;

SpacePicture spacePicture(SimulatedMac& mac, const SimulatedSpace& space, const Rect& screen) {
    SpacePicture picture{space.id, space.kind, {}};
    for (const SimulatedWindow& window : mac.windows().all()) {
        const bool isHere = std::ranges::find(window.spaces, space.id) != window.spaces.end();
        if (!isHere || !window.isOrderedIn || window.layer != ordinaryLayer || window.alpha < 0.05) continue;
        // Screens that share their Spaces each show their own part of one.
        if (!screen.contains(window.bounds.middle())) continue;
        const bool fillsScreen = space.fullscreenWindow == window.number;
        picture.windows.push_back({window.number, window.ownerName, fillsScreen ? screen : window.bounds,
                                   mac.apps().active() == window.ownerPid});
    }
    std::ranges::reverse(picture.windows);
    return picture;
}

void addTransition(ScreenPicture& picture, const SimulatedMac& mac, const SimulatedDisplay& display,
                   async::Nanos now) {
    const auto transition = mac.stage().transition(display.uuid);
    const SimulatedSpace* target = transition ? display.find(transition->to) : nullptr;
    if (!target || target->id == display.current) return;
    picture.arriving = target->id;
    picture.arrivesFromTheRight = display.indexOf(target->id) > display.indexOf(display.current);
    // One that never ends is stuck in the middle.
    const double endless = 0.5;
    const double passed = async::secondsOf(now - transition->start);
    picture.arrived = std::isinf(transition->seconds) ? std::min(passed, endless)
                                                      : std::clamp(passed / transition->seconds, 0.0, 1.0);
}

} // namespace

const SpacePicture* ScreenPicture::find(SpaceID space) const {
    const auto found = std::ranges::find(spaces, space, &SpacePicture::space);
    return found == spaces.end() ? nullptr : &*found;
}

MacPicture pictureOf(SimulatedMac& mac, async::Nanos now) {
    MacPicture picture;
    const std::string menuBar = mac.apps().menuBarDisplay();
    for (const ScreenInfo& screen : mac.layout().screens()) {
        const SimulatedDisplay* display = mac.layout().displayAt(screen.frame.middle());
        if (!display) continue;
        ScreenPicture drawn;
        drawn.uuid = screen.uuid;
        drawn.name = screen.name;
        drawn.frame = screen.frame;
        drawn.hasMenuBar = menuBar == display->uuid;
        for (const SimulatedSpace& space : display->spaces)
            drawn.spaces.push_back(spacePicture(mac, space, screen.frame));
        drawn.shown = display->current;
        addTransition(drawn, mac, *display, now);
        picture.screens.push_back(std::move(drawn));
    }
    picture.missionControl = mac.missionControl().picture();
    if (const auto active = mac.apps().active())
        if (const RunningApplication* app = mac.apps().find(*active)) picture.frontmost = app->app.name;
    return picture;
}

} // namespace lumnara
