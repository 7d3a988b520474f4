#include "bench/Bench.h"
#include "core/async/PollLoop.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/names/NameStore.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

using namespace lumnara;

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

} // namespace

int main() {
    bench::Report report("linked");
    const RefreshTimes linked = measureRefresh(desktopsEach);
    const RefreshTimes unlinked = measureRefresh(0);
    report.add("refresh_16_groups_us", linked.unchanged, "2 displays of 16 desktops, all linked");
    report.line("refresh_no_groups_us", unlinked.unchanged, "the same, none linked");
    report.line("switched_16_groups_us", linked.switched, "a linked pair became current");
    report.line("switched_no_groups_us", unlinked.switched);
    return EXIT_SUCCESS;
}
