// What a verified switch of the whole program costs, beside the least that it can cost on a window manager of
// its own that nobody else listens to, and beside a spawned message program.

#include "bench/BareI3Client.h"
#include "bench/ShellSwitch.h"
#include "bench/SwitchOpenbox.h"
#include "tests/session/I3Shell.h"

namespace lumnara::bench {
namespace {

/// Ten workspaces with a window each, on two monitors.
void fill(testing::XSession& x, BareI3Client& client) {
    for (int number = 10; number >= 1; --number) {
        const std::string name = std::to_string(number);
        x.run({"i3-msg", "-q", "-s", x.i3Socket(),
               "focus output " + std::string(number % 2 ? "L" : "R") + "; workspace " + name});
        if (!testing::waitUntil([&] { return client.shows(name); }))
            throw std::runtime_error("no workspace " + name);
        x.openWindow("window " + name);
    }
}

void measureI3(Report& report) {
    testing::XSession quiet(testing::WindowManager::i3);
    BareI3Client bare(quiet.i3Socket());
    fill(quiet, bare);
    testing::I3Shell at;
    BareI3Client beside(at.session.i3Socket());
    fill(at.session, beside);

    // The two that are switched between, both on L.
    const std::string names[] = {"3", "1"};
    std::vector<std::string> keys;
    for (const std::string& name : names) {
        beside.switchTo(name);
        at.settle();
        keys.push_back(at.shell().shownOn("L"));
    }
    std::size_t ours = 1, theirs = 1;
    const PairedTimes pairs = timeInTurns(
        switchPairs,
        [&] {
            const double time = microsecondsOfSwitch(at.loop, at.shell(), keys.at(ours = 1 - ours));
            if (!beside.shows(names[ours])) throw std::runtime_error("the switch did not land");
            return time;
        },
        [&] { return medianMicroseconds(1, [&] { bare.switchTo(names[theirs = 1 - theirs]); }); });
    std::vector<double> spawned;
    for (int round = 0; round < 51; ++round) {
        theirs = 1 - theirs;
        spawned.push_back(medianMicroseconds(1, [&] {
            quiet.start({"i3-msg", "-q", "-s", quiet.i3Socket(), "workspace", names[theirs]})->waitForExit();
        }));
        if (!bare.shows(names[theirs])) throw std::runtime_error("the spawned switch did not land");
    }
    reportSwitches(report, "i3", pairs, spawned);
}

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::Report report("switch");
    lumnara::bench::measureI3(report);
    lumnara::bench::measureOpenbox(report);
}
