// The Board's model over 1,000 desktops: what opening it, a keystroke and a change of desktop cost, without
// any drawing.

#include "app/board/QuickSwitcherModel.h"
#include "bench/Bench.h"
#include "core/async/TestLoop.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace lumnara::bench {
namespace {

constexpr int desktops = 1000;
constexpr int rounds = 200;

/// Two words each, all different, as a user with very many projects might have.
std::string nameOf(int i) {
    static constexpr const char* first[] = {"Mail",   "Design", "Billing", "Research", "Writing",
                                            "Travel", "Garden", "Server",  "Archive",  "Studio"};
    static constexpr const char* second[] = {"north",   "review", "garage", "planet", "copper",
                                             "harbour", "meadow", "signal", "winter", "bridge"};
    return std::string(first[i % 10]) + ' ' + second[i / 10 % 10] + ' ' + static_cast<char>('A' + i / 100) +
           'x';
}

SpaceSnapshot layout(Date takenAt) {
    DisplaySpaces display{DisplayID{"A"}, {}, SpaceID{1}};
    for (int i = 0; i < desktops; ++i) {
        Space space;
        space.id = SpaceID{static_cast<std::uint64_t>(i) + 1};
        space.uuid = "desktop-" + std::to_string(i);
        space.kind = SpaceKind::user;
        space.indexOnDisplay = i;
        display.spaces.push_back(std::move(space));
    }
    return {{std::move(display)}, takenAt};
}

void measure() {
    async::TestLoop loop;
    testing::TemporaryFolder folder;
    NameStore store(loop, folder / "desktops.json");
    store.change([&](NameStoreFile& file) {
        for (int i = 0; i < desktops; ++i) {
            DesktopRecord record;
            record.name = nameOf(i);
            record.aliases = {"alias " + std::to_string(i) + "q", "second " + std::to_string(i) + "z"};
            file.desktops["desktop-" + std::to_string(i)] = std::move(record);
        }
    });
    SnapshotSpaceProvider provider(layout(loop.date()));
    DesktopCatalog catalog(loop, provider, store);
    testing::MemoryDefaultsStore defaults;
    const AppSettings settings(defaults);
    QuickSwitcherModel model(catalog, settings);

    Report report("board");
    report.add("open_1000_us",
               medianMicroseconds(rounds,
                                  [&] {
                                      model.open(DisplayID{"A"}, 2560, true);
                                      model.reset();
                                  }),
               "tiles and the matcher's index");

    const std::string words[] = {"mail north", "dsign", "server signal cx", "alias 77", "42"};
    std::vector<double> strokes;
    double worst = 0;
    for (const std::string& word : words)
        for (std::size_t length = 1; length <= word.size(); ++length) {
            const std::string query = word.substr(0, length);
            strokes.push_back(medianMicroseconds(rounds / 10, [&] { model.setQuery(query); }));
            worst = std::max(worst, strokes.back());
        }
    std::nth_element(strokes.begin(), strokes.begin() + static_cast<std::ptrdiff_t>(strokes.size() / 2),
                     strokes.end());
    report.add("keystroke_1000_us", strokes[strokes.size() / 2],
               "median over " + std::to_string(strokes.size()));
    report.add("keystroke_worst_1000_us", worst, "the slowest query's median");

    model.setQuery({});
    std::uint64_t current = 1;
    report.add("switch_seen_1000_us",
               medianMicroseconds(rounds,
                                  [&] {
                                      current = current % desktops + 1;
                                      provider.current.displays[0].currentID = SpaceID{current};
                                      catalog.refresh();
                                  }),
               "the catalog reads, the open Board follows");
    model.close();
    report.line("switch_closed_1000_us",
                medianMicroseconds(rounds,
                                   [&] {
                                       current = current % desktops + 1;
                                       provider.current.displays[0].currentID = SpaceID{current};
                                       catalog.refresh();
                                   }),
                "the catalog alone");
}

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::measure();
    return 0;
}
