#include "bench/Bench.h"
#include "core/async/PollLoop.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/names/NameStore.h"
#include "tests/session/I3Shell.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace lumnara;

/// Displays with full-screen Spaces among their desktops, as the live provider tells them.
SpaceSnapshot layout(int displays, int spacesEach) {
    SpaceSnapshot snapshot;
    std::uint64_t id = 0;
    for (int d = 0; d < displays; ++d) {
        DisplaySpaces display;
        display.display.uuid = "37D8832A-2D66-02CA-B9F7-8F30A301B" + std::to_string(100 + d);
        for (int i = 0; i < spacesEach; ++i) {
            Space space;
            space.id = {++id};
            space.uuid = "1D2C3B4A-0000-4000-8000-" + std::to_string(100'000'000'000 + id);
            space.kind = i % 4 == 3 ? SpaceKind::fullscreen : SpaceKind::user;
            space.indexOnDisplay = i;
            if (space.kind == SpaceKind::fullscreen) space.fullscreenOwner = RunningApp{1, "org.web", "Web"};
            display.spaces.push_back(space);
        }
        display.currentID = display.spaces.front().id;
        snapshot.displays.push_back(display);
    }
    return snapshot;
}

struct Figures {
    double unchanged;
    double switched;
};

/// Times refreshes of a catalog whose desktops all have names: one that finds nothing changed, and one that
/// finds another desktop current.
Figures measure(int displays, int spacesEach, int rounds) {
    const testing::TemporaryFolder folder;
    const std::filesystem::path url = folder / "desktops.json";
    async::PollLoop loop;
    NameStore store(loop, url);
    SnapshotSpaceProvider provider(layout(displays, spacesEach));
    DesktopCatalog catalog(loop, provider, store);
    store.change([&](NameStoreFile& file) {
        for (const Desktop& desktop : catalog.desktops()) {
            file.desktops[desktop.key].name = "Name " + desktop.space.id.text();
            file.desktops[desktop.key].aliases = {"alias " + desktop.space.id.text()};
        }
    });
    catalog.refresh();
    store.saveNow();
    std::filesystem::remove(url);
    const auto contents = store.file();

    Figures figures{};
    figures.unchanged = bench::medianMicroseconds(rounds, [&] {
        ++provider.current.takenAt.milliseconds;
        catalog.refresh();
    });
    figures.switched = bench::medianMicroseconds(rounds, [&] {
        DisplaySpaces& display = provider.current.displays.front();
        display.currentID = display.spaces[display.currentID == display.spaces[0].id ? 1 : 0].id;
        catalog.refresh();
    });
    loop.runUntil([] { return false; }, 0.4); // longer than a change would wait to be written
    store.flush();
    if (store.file() != contents || std::filesystem::exists(url)) {
        std::fprintf(stderr, "a refresh touched the store\n");
        std::exit(EXIT_FAILURE);
    }
    return figures;
}

/// What one switch by somebody else costs, and one letter typed on the Board, with the whole program
/// listening.
void measureCosts(bench::Report& report) {
    testing::I3Shell at(testing::I3Shell::Counting::on);
    constexpr int events = 30;
    int next = 0;
    testing::I3Shell::Costs switches;
    for (int i = 0; i < events; ++i) {
        const auto costs = at.costsOf([&] { at.otherShows("w" + std::to_string(next = (next + 1) % 4)); });
        switches.requests += costs.requests;
        switches.roundTrips += costs.roundTrips;
    }
    report.add("ipc_requests_per_event", static_cast<double>(switches.requests) / events, "at most 1");
    report.add("x_round_trips_per_event", static_cast<double>(switches.roundTrips) / events, "0");

    at.shell().settings.boardOnEveryDisplay.set(false);
    at.shell().board.open();
    const std::string typed = "desktop 1";
    int requests = 0;
    for (const char letter : typed) requests += at.costsOf([&] { at.shell().type({letter}); }).requests;
    report.add("requests_per_keystroke", requests / static_cast<double>(typed.size()), "0");
}

} // namespace

int main() {
    bench::Report report("refresh");
    measureCosts(report);
    const Figures desk = measure(3, 16, 5000);
    report.add("unchanged_3x16_us", desk.unchanged, "3 displays of 16 Spaces, nothing changed");
    report.add("switched_3x16_us", desk.switched, "another desktop became current");

    const Figures thousand = measure(10, 100, 500);
    const Figures tenThousand = measure(10, 1'000, 50);
    const Figures hundredThousand = measure(10, 10'000, 9);
    report.add("unchanged_10000_us", tenThousand.unchanged, "10 displays of 1,000 Spaces");
    report.add("switched_10000_us", tenThousand.switched);
    report.line("unchanged_1000_us", thousand.unchanged);
    report.line("unchanged_100000_us", hundredThousand.unchanged);
    std::printf("  ten times the Spaces cost: unchanged %.1f and %.1f times, switched %.1f and %.1f times\n",
                tenThousand.unchanged / thousand.unchanged, hundredThousand.unchanged / tenThousand.unchanged,
                tenThousand.switched / thousand.switched, hundredThousand.switched / tenThousand.switched);
    return EXIT_SUCCESS;
}
