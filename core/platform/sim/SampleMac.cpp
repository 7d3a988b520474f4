#include "core/platform/sim/SampleMac.h"

#include <array>
#include <string>

namespace lumnara {

namespace {

struct SampleScreen {
    const char* uuid;
    const char* name;
    int desktops;
};

constexpr std::array sampleScreens{
    SampleScreen{"5A1D0C9E-0001-4F60-9B1A-6E2C6B1F3A01", "Built-in Screen", 5},
    SampleScreen{"5A1D0C9E-0002-4F60-9B1A-6E2C6B1F3A02", "Desk Screen", 4},
    SampleScreen{"5A1D0C9E-0003-4F60-9B1A-6E2C6B1F3A03", "Side Screen", 3},
};

/// A window by its place on its screen, in parts of the screen's size.
struct SampleWindow {
    const char* application;
    std::size_t screen;
    std::size_t desktop;
    Rect part;
};

constexpr std::array sampleWindows{
    SampleWindow{"Mail", 0, 0, {0.06, 0.12, 0.6, 0.72}},
    SampleWindow{"Calendar", 0, 0, {0.46, 0.2, 0.48, 0.6}},
    SampleWindow{"Editor", 0, 1, {0.08, 0.1, 0.64, 0.78}},
    SampleWindow{"Terminal", 0, 1, {0.5, 0.44, 0.44, 0.44}},
    SampleWindow{"Browser", 0, 2, {0.1, 0.11, 0.8, 0.78}},
    SampleWindow{"Photos", 0, 4, {0.15, 0.14, 0.7, 0.7}},
    SampleWindow{"Browser", 1, 0, {0.08, 0.1, 0.5, 0.76}},
    SampleWindow{"Editor", 1, 0, {0.44, 0.16, 0.5, 0.7}},
    SampleWindow{"Music", 1, 1, {0.2, 0.18, 0.58, 0.6}},
    SampleWindow{"Terminal", 1, 3, {0.12, 0.14, 0.46, 0.56}},
    SampleWindow{"Player", 1, 2, {0.1, 0.1, 0.8, 0.8}},
};

/// Has a Space to itself.
constexpr const char* fullscreenApplication = "Player";

Rect partOf(const Rect& screen, const Rect& part) {
    return {screen.x + part.x * screen.width, screen.y + part.y * screen.height, part.width * screen.width,
            part.height * screen.height};
}

std::int32_t runningPid(SimulatedMac& mac, const std::string& name) {
    for (const RunningApplication& running : mac.apps().running())
        if (running.app.name == name) return running.app.pid;
    std::string id = "org.example." + name;
    return mac.launch(name, std::move(id));
}

} // namespace

void furnish(SimulatedMac& mac, const std::vector<Rect>& frames) {
    for (std::size_t index = 0; index < frames.size() && index < sampleScreens.size(); ++index) {
        const SampleScreen& sample = sampleScreens[index];
        ScreenInfo screen;
        screen.uuid = sample.uuid;
        screen.name = sample.name;
        screen.frame = frames[index];
        screen.isBuiltIn = index == 0;
        mac.addScreen(std::move(screen), sample.desktops);
    }
    for (const SampleWindow& sample : sampleWindows) {
        const SimulatedDisplay* display =
            sample.screen < frames.size() ? mac.layout().display(sampleScreens[sample.screen].uuid) : nullptr;
        if (!display) continue;
        const WindowNumber window =
            mac.openWindow(runningPid(mac, sample.application), display->spaces.at(sample.desktop).id);
        mac.windows().place(window, partOf(frames[sample.screen], sample.part));
        if (sample.application == std::string_view(fullscreenApplication)) mac.enterFullscreen(window);
    }
    for (const SimulatedDisplay& display : mac.layout().displays())
        mac.stage().move(display.spaces.front().id, 0);
    mac.apps().activateSelf(runningPid(mac, sampleWindows.front().application));
}

} // namespace lumnara
