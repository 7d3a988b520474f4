#include "tests/simruns/ArrangeStage.h"

#include "core/platform/mac/missioncontrol/FrameArea.h"
#include "tests/simruns/TwoScreens.h"

#include <algorithm>
#include <string>

namespace lumnara::testing {

namespace {

MacSeams withScreens(SimulatedMac& mac, int left, int right,
                     const std::function<void(SimulatedMac&)>& prepare = {}) {
    plugTwoScreens(mac, left, right);
    if (prepare) prepare(mac);
    mac.warpPointer({400, 600});
    return mac.seams();
}

} // namespace

SimulatedMacOptions ArrangeStage::optionsFrom(SimulatedRandom& random, std::uint64_t seed) {
    return {.seed = seed,
            .separateSpaces = random.below(8) != 0,
            .dockTree = random.below(2) == 0 ? SimulatedDockTree::older : SimulatedDockTree::newer};
}

ArrangeStage::ArrangeStage(SimulatedRandom& random, std::uint64_t seed)
    : mac(loop, optionsFrom(random, seed)),
      seams(furnished(random)) {
    furnish(random);
}

ArrangeStage::ArrangeStage(int desktops, SimulatedMacOptions options,
                           const std::function<void(SimulatedMac&)>& prepare)
    : mac(loop, options),
      seams(withScreens(mac, desktops, desktops, prepare)),
      display{"LEFT"} {}

MacSeams ArrangeStage::furnished(SimulatedRandom& random) {
    const auto left = static_cast<int>(random.below(12) == 0 ? 16 : 2 + random.below(6));
    const auto right = static_cast<int>(1 + random.below(5));
    isWithoutSymbol = random.below(12) == 0;
    if (isWithoutSymbol) mac.inject(SimulatedFault::symbolMissing);
    return withScreens(mac, left, right);
}

/// Applications with windows, some in full screen; a display to work on; the pointer anywhere.
void ArrangeStage::furnish(SimulatedRandom& random) {
    const auto& displays = mac.layout().displays();
    display = {displays[random.below(4) == 0 ? displays.size() - 1 : 0].uuid};
    for (const char* name : {"Notes", "Player"}) {
        const auto app = mac.launch(name, std::string("com.example.") + name);
        const auto& spaces = mac.layout().display(display.uuid)->spaces;
        const WindowNumber window = mac.openWindow(app, spaces[random.below(spaces.size())].id);
        if (random.below(3) == 0) mac.enterFullscreen(window);
    }
    loop.runUntilDone();
    mac.warpPointer({random.between(0, 4000), random.between(0, 900)});
}

bool ArrangeStage::showsBar(std::size_t count) const {
    return driver.lastBar && driver.lastBar->size() == count &&
           std::ranges::all_of(*driver.lastBar, hasArea, &SpacesBarButton::frame);
}

bool ArrangeStage::showsExpandedBar(std::size_t count) const {
    return showsBar(count) && driver.lastBar->front().frame.height > 26;
}

} // namespace lumnara::testing
