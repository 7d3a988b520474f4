#include "bench/BareI3Client.h"
#include "bench/ShellSwitch.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/base/Log.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/names/NameStore.h"
#include "core/platform/linux/JsonDefaultsStore.h"
#include "tests/session/I3Shell.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumnara {
namespace {

constexpr int desktopsEach = 16;

/// Two displays of 16 desktops.
SpaceSnapshot twoDisplays() {
    SpaceSnapshot snapshot;
    std::uint64_t id = 0;
    for (int d = 0; d < 2; ++d) {
        DisplaySpaces display;
        display.display.uuid = "37D8832A-2D66-02CA-B9F7-8F30A301B" + std::to_string(100 + d);
        for (int i = 0; i < desktopsEach; ++i) {
            Space space;
            space.id = {++id};
            space.uuid = "1D2C3B4A-0000-4000-8000-" + std::to_string(100'000'000'000 + id);
            space.kind = SpaceKind::user;
            space.indexOnDisplay = i;
            display.spaces.push_back(space);
        }
        display.currentID = display.spaces.front().id;
        snapshot.displays.push_back(display);
    }
    return snapshot;
}

struct RefreshTimes {
    double unchanged; ///< microseconds
    double switched;  ///< microseconds; a linked pair became current
};

/// Times the refreshes of a catalog whose desktops all have names, the first `groups` of each display
/// linked with their like. None of them may touch the disk.
RefreshTimes measureRefresh(int groups) {
    const testing::TemporaryFolder folder;
    const std::filesystem::path url = folder / "desktops.json";
    async::PollLoop loop;
    NameStore store(loop, url);
    SnapshotSpaceProvider provider(twoDisplays());
    DesktopCatalog catalog(loop, provider, store, DisplayLinkMode::linked);
    const auto& displays = provider.current.displays;
    for (int i = 0; i < desktopsEach; ++i) {
        const auto place = static_cast<std::size_t>(i);
        for (const DisplaySpaces& display : displays)
            catalog.rename(display.spaces[place].uuid, "Name " + std::to_string(i) + "x");
        if (i < groups) catalog.link(displays[0].spaces[place].uuid, displays[1].spaces[place].uuid);
    }
    if (*catalog.activeLinkCount != groups) {
        std::fprintf(stderr, "the desktops are not linked\n");
        std::exit(EXIT_FAILURE);
    }
    store.saveNow();
    std::filesystem::remove(url);
    const auto contents = store.file();

    RefreshTimes times{};
    times.unchanged = bench::medianMicroseconds(5000, [&] {
        ++provider.current.takenAt.milliseconds;
        catalog.refresh();
    });
    times.switched = bench::medianMicroseconds(5000, [&] {
        for (DisplaySpaces& display : provider.current.displays)
            display.currentID = display.spaces[display.currentID == display.spaces[0].id ? 1 : 0].id;
        catalog.refresh();
    });
    loop.runUntil([] { return false; }, 0.4); // longer than a change would wait to be written
    store.flush();
    if (store.file() != contents || std::filesystem::exists(url)) {
        std::fprintf(stderr, "a refresh touched the store\n");
        std::exit(EXIT_FAILURE);
    }
    return times;
}

/// Two pairs of workspaces on two monitors, with a window each; the first of a pair is on L.
const std::pair<std::string, std::string> shownPairs[] = {{"3", "4"}, {"1", "2"}};

void show(testing::XSession& x, bench::BareI3Client& client,
          const std::pair<std::string, std::string>& pair) {
    x.run({"i3-msg", "-q", "-s", x.i3Socket(),
           "focus output R; workspace " + pair.second + "; focus output L; workspace " + pair.first});
    if (!testing::waitUntil([&] { return client.shows(pair.first) && client.shows(pair.second); }))
        throw std::runtime_error("the workspaces are not shown");
}

void fill(testing::XSession& x, bench::BareI3Client& client) {
    for (const auto& pair : shownPairs) {
        show(x, client, pair);
        x.openWindow("on L");
        x.run({"i3-msg", "-q", "-s", x.i3Socket(), "focus output R"});
        x.openWindow("on R");
    }
    x.movePointer(100, 700);
}

/// Two linked pairs gone to in turn by the whole program, both screens verified, beside two bare verified
/// switches on a window manager that nobody else listens to, and two spawned message programs.
void measureI3(bench::Report& report) {
    testing::XSession quiet(testing::WindowManager::i3);
    bench::BareI3Client bare(quiet.i3Socket());
    fill(quiet, bare);
    testing::I3Shell at;
    bench::BareI3Client beside(at.session.i3Socket());
    fill(at.session, beside);
    at.shell().settings.displayLinkMode.set(DisplayLinkMode::linked);
    std::vector<std::string> keys;
    for (const auto& pair : shownPairs) {
        show(at.session, beside, pair);
        at.settle();
        DesktopCatalog& catalog = at.state().catalog();
        if (!catalog.link(at.shell().shownOn("L"), at.shell().shownOn("R")))
            throw std::runtime_error("the desktops are not linked");
        keys.push_back(catalog.currentDesktop("L")->key);
    }

    const LogSink before = setLogSink([](std::string_view) {});
    std::size_t ours = 1, theirs = 1;
    const bench::PairedTimes pairs = bench::timeInTurns(
        bench::switchPairs,
        [&] {
            const double time = bench::microsecondsOfSwitch(at.loop, at.shell(), keys[ours = 1 - ours]);
            if (!beside.shows(shownPairs[ours].first) || !beside.shows(shownPairs[ours].second))
                throw std::runtime_error("the linked switch did not land");
            return time;
        },
        [&] {
            theirs = 1 - theirs;
            return bench::medianMicroseconds(1, [&] {
                bare.switchTo(shownPairs[theirs].first);
                bare.switchTo(shownPairs[theirs].second);
            });
        });
    std::vector<double> spawned;
    for (int round = 0; round < 31; ++round) {
        theirs = 1 - theirs;
        spawned.push_back(bench::medianMicroseconds(1, [&] {
            for (const auto& name : {shownPairs[theirs].first, shownPairs[theirs].second})
                quiet.start({"i3-msg", "-q", "-s", quiet.i3Socket(), "workspace", name})->waitForExit();
        }));
    }
    setLogSink(before);
    report.times("i3 linked, us", pairs.ours);
    report.times("i3 two bare, us", pairs.bare);
    report.times("i3 two spawned, us", spawned);
    report.add("i3_two_displays_vs_two_bare", pairs.ratio());
    report.add("i3_vs_two_spawned", bench::medianOf(pairs.ours) / bench::medianOf(spawned));
}

/// A setting that is changed, up to the last subscriber; the disk follows later and apart.
void measureSettings(bench::Report& report) {
    const testing::TemporaryFolder folder;
    async::PollLoop loop;
    JsonDefaultsStore defaults(loop, folder / "settings.json");
    AppSettings settings(defaults);
    double width = 140;
    report.line("settings_write_us",
                bench::medianMicroseconds(2000, [&] { settings.boardTileWidth.set(width += 0.1); }));
}

void measureRefreshes(bench::Report& report) {
    const RefreshTimes linked = measureRefresh(desktopsEach);
    const RefreshTimes unlinked = measureRefresh(0);
    report.add("refresh_16_groups_us", linked.unchanged, "2 displays of 16 desktops, all linked");
    report.line("refresh_no_groups_us", unlinked.unchanged, "the same, none linked");
    report.line("switched_16_groups_us", linked.switched, "a linked pair became current");
    report.line("switched_no_groups_us", unlinked.switched);
}

} // namespace
} // namespace lumnara

int main() {
    lumnara::bench::Report report("linked");
    lumnara::measureI3(report);
    lumnara::measureSettings(report);
    lumnara::measureRefreshes(report);
}
