#include "app/AppState.h"
#include "bench/BareI3Client.h"
#include "bench/Bench.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/base/Log.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/names/NameStore.h"
#include "core/platform/linux/JsonDefaultsStore.h"
#include "tests/session/IpcFixture.h"
#include "tests/support/RecordingExecutor.h"
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

async::Task<> switchTo(AppState& state, std::string key, bool& done) {
    co_await state.switchToDesktop(key);
    done = true;
}

/// Two linked pairs on two monitors of a real i3, gone to in turn: both screens verified, beside two bare
/// verified switches on a socket and two spawned message programs.
void measureI3(bench::Report& report) {
    testing::IpcFixture at(testing::IpcWindowManager::i3);
    bench::BareI3Client bare(at.x().i3Socket());
    JsonDefaultsStore defaults(at.loop, at.folder / "settings.json");
    AppSettings settings(defaults);
    settings.displayLinkMode.set(DisplayLinkMode::linked);
    testing::RecordingExecutor executor;
    AppState state(at.loop, settings, at.platform(), executor, at.folder.path());
    const std::vector<std::pair<std::string, std::string>> pairs{{"3", "4"}, {"1", "2"}};
    std::vector<std::string> keys;
    for (const auto& [left, right] : pairs) {
        at.command("focus output R; workspace " + right);
        at.command("focus output L; workspace " + left);
        if (!testing::waitUntil([&] { return bare.shows(left) && bare.shows(right); }))
            throw std::runtime_error("the workspaces are not shown");
        at.x().openWindow("on L");
        at.command("focus output R");
        at.x().openWindow("on R");
        state.catalog().refresh();
        if (!state.catalog().link(state.catalog().currentDesktop("L")->spaceKey,
                                  state.catalog().currentDesktop("R")->spaceKey))
            throw std::runtime_error("the desktops are not linked");
        keys.push_back(state.catalog().currentDesktop("L")->key);
    }
    at.x().movePointer(100, 700);

    const LogSink before = setLogSink([](std::string_view) {});
    std::vector<double> ours, bares, spawns;
    std::size_t target = 1;
    const auto landed = [&] { return bare.shows(pairs[target].first) && bare.shows(pairs[target].second); };
    for (int round = 0; round < 151; ++round) {
        target = 1 - target;
        ours.push_back(bench::medianMicroseconds(1, [&] {
            bool done = false;
            const auto handle = async::spawn(at.loop, switchTo(state, keys[target], done));
            at.loop.runUntil([&done] { return done; }, 5);
        }));
        if (!landed()) throw std::runtime_error("the linked switch did not land");
        target = 1 - target;
        bares.push_back(bench::medianMicroseconds(1, [&] {
            bare.switchTo(pairs[target].first);
            bare.switchTo(pairs[target].second);
        }));
        at.loop.runUntil([] { return false; }, 0.002); // what it announced to us
    }
    for (int round = 0; round < 31; ++round) {
        target = 1 - target;
        spawns.push_back(bench::medianMicroseconds(1, [&] {
            for (const auto& name : {pairs[target].first, pairs[target].second})
                at.x().start({"i3-msg", "-q", "-s", at.x().i3Socket(), "workspace", name})->waitForExit();
        }));
    }
    setLogSink(before);
    report.line("i3 linked, us", bench::medianOf(ours));
    report.line("i3 two bare, us", bench::medianOf(bares));
    report.line("i3 two spawned, us", bench::medianOf(spawns));
    report.add("i3_two_displays_vs_two_bare", bench::medianOf(ours) / bench::medianOf(bares));
    report.add("i3_vs_two_spawned", bench::medianOf(ours) / bench::medianOf(spawns));
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
