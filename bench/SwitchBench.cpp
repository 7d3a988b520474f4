// What a verified switch costs through the door that every surface uses, beside the least that it can cost on
// the same window manager, and beside a spawned message program. Each on a session of its own.

#include "bench/BareI3Client.h"
#include "bench/SwitchOpenbox.h"
#include "tests/session/IpcFixture.h"

namespace lumnara::bench {
namespace {

/// Ten desktops with a window each, on two monitors. The ratios are ours divided by the yardstick.
void measureI3(Report& report) {
    testing::IpcFixture at(testing::IpcWindowManager::i3);
    BareI3Client bare(at.x().i3Socket());
    for (int number = 10; number >= 1; --number) {
        const std::string name = std::to_string(number);
        at.command("focus output " + std::string(number % 2 ? "L" : "R") + "; workspace " + name);
        if (!testing::waitUntil([&] { return bare.shows(name); }))
            throw std::runtime_error("no workspace " + name);
        at.x().openWindow("window " + name);
    }
    // The two that are switched between, both on L.
    const std::string names[] = {"1", "3"};
    std::map<std::string, std::string> uuids;
    for (const std::string& name : names) {
        bare.switchTo(name);
        uuids[name] = at.current("L");
    }

    std::vector<double> ours, bares, spawns;
    std::size_t target = 1;
    for (int round = 0; round < 301; ++round) {
        target = 1 - target;
        ours.push_back(microsecondsOfSwitch(at.loop, at.switcher(), uuids.at(names[target])));
        if (!bare.shows(names[target])) throw std::runtime_error("the switch did not land");
        target = 1 - target;
        bares.push_back(microsecondsOf([&] { bare.switchTo(names[target]); }));
        at.loop.runUntil([] { return false; }, 0.001); // what it announced to us
    }
    for (int round = 0; round < 51; ++round) {
        target = 1 - target;
        spawns.push_back(microsecondsOf([&] {
            at.x()
                .start({"i3-msg", "-q", "-s", at.x().i3Socket(), "workspace", names[target]})
                ->waitForExit();
        }));
        if (!bare.shows(names[target])) throw std::runtime_error("the spawned switch did not land");
    }

    reportSwitches(report, "i3", std::move(ours), std::move(bares), std::move(spawns));
}

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::Report report("switch");
    lumnara::bench::measureI3(report);
    lumnara::bench::measureOpenbox(report);
}
