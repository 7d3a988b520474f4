#include "core/base/Files.h"
#include "core/model/SpaceKitError.h"
#include "core/names/NameError.h"
#include "core/names/NameStoreCodec.h"
#include "tests/catalog/CatalogTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <set>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

/// Dates as the file holds them.
NameStoreFile::Map<DesktopRecord> inWholeSeconds(NameStoreFile::Map<DesktopRecord> desktops) {
    const auto cut = [](Date& date) { date.milliseconds -= date.milliseconds % 1000; };
    for (auto& [key, record] : desktops) {
        cut(record.createdAt);
        if (record.lastSeen) cut(record.lastSeen->at);
    }
    return desktops;
}

/// A user, a window server and a disk that do anything at any time. After each step the catalog, the store
/// and the file are held to what has to be true whatever happened.
class RandomWalk : public testing::CatalogTest {
protected:
    RandomWalk() { debounce = 5; } // most bursts end in saveNow(): a write to a real disk takes some 10 ms

    int below(std::size_t n) { return static_cast<int>(random_() % n); }
    bool chance(int percent) { return below(100) < percent; }
    template <class List> auto& oneOf(List& list) {
        return list[static_cast<std::size_t>(below(std::size(list)))];
    }

    void begin(unsigned seed) {
        random_.seed(seed);
        world_.clear();
        unplugged_.clear();
        fs::remove_all(url.parent_path());
        for (const char* uuid : {"A", "B", "C"}) {
            std::vector<Space> spaces;
            for (int n = below(4); n >= 0; --n) spaces.push_back(newSpace());
            if (chance(50)) spaces.front().uuid.clear();
            world_.push_back(testing::makeDisplay(uuid, std::move(spaces)));
        }
        look();
        start();
        names_.clear();
    }

    // What the window server does.

    Space newSpace() {
        const std::uint64_t id = ++lastID_;
        const std::string uuid = chance(90) ? "U" + std::to_string(id) : "";
        if (chance(80)) return testing::makeSpace(id, uuid, chance(90) ? SpaceKind::user : SpaceKind::system);
        const RunningApp apps[] = {{1, "org.mail", "Mail"}, {2, "org.web", "Web"}, {3, {}, "Mail"}};
        return testing::makeFullscreen(id, uuid, chance(80) ? std::optional(oneOf(apps)) : std::nullopt);
    }
    void changeWorld() {
        DisplaySpaces& display = oneOf(world_);
        auto& spaces = display.spaces;
        switch (below(9)) {
        case 0: spaces.insert(spaces.begin() + below(spaces.size() + 1), newSpace()); break;
        case 1:
            if (spaces.size() > 1) spaces.erase(spaces.begin() + below(spaces.size()));
            break;
        case 2: std::shuffle(spaces.begin(), spaces.end(), random_); break;
        case 3: { // a Space moves to another display
            if (spaces.size() < 2) break;
            Space space = spaces.back();
            spaces.pop_back();
            oneOf(world_).spaces.push_back(space);
            break;
        }
        case 4: // after a restart of the session all uuids are new
            for (Space& space : spaces)
                if (!space.uuid.empty()) space.uuid = "U" + std::to_string(++lastID_);
            break;
        case 5:
            if (world_.size() < 2) break;
            std::swap(display, world_.back());
            unplugged_.push_back(std::move(world_.back()));
            world_.pop_back();
            break;
        case 6:
            if (unplugged_.empty()) break;
            world_.push_back(std::move(unplugged_.back()));
            unplugged_.pop_back();
            break;
        case 7: // another spelling of the same display
            for (char& c : display.display.uuid) c = static_cast<char>(c ^ 0x20);
            break;
        case 8:
            for (Space& space : spaces)
                if (space.kind == SpaceKind::fullscreen) space.fullscreenOwner.reset();
            break;
        }
        look();
    }
    /// Puts the world before the provider, each display showing one of its Spaces.
    void look() {
        for (DisplaySpaces& display : world_)
            display =
                testing::makeDisplay(display.display.uuid, display.spaces, oneOf(display.spaces).id.raw);
        provider.current = {world_, loop.date()};
    }
    void refreshSometimesInVain() {
        if (chance(10)) provider.failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
        catalog->refresh();
        provider.failure = nullptr;
    }

    // What the user does. `names_` is what must be in the store afterwards.

    std::string anyKey() {
        std::vector<std::string> keys = {"nobody"};
        for (const Desktop& desktop : catalog->desktops()) keys.push_back(desktop.key);
        for (const Orphan& orphan : *catalog->orphans) keys.push_back(orphan.key);
        return oneOf(keys);
    }
    void noteRecord(const std::string& before, const std::string& after) {
        if (const auto found = names_.find(before); found != names_.end()) names_.erase(found);
        names_.insert(after);
    }
    void edit() {
        const std::string key = anyKey();
        const auto record = store->record(key);
        const std::string oldName = record ? record->name : "no record";
        const auto contents = store->file();
        try {
            switch (below(8)) {
            case 0:
            case 1:
            case 2: {
                const std::string pool[] = {
                    "Mail", "mail", "Wéb", "Chat", "next", " ", "Line\x01\nfeed", "👩‍👩‍👧"};
                const std::string name =
                    chance(50) ? oneOf(pool) : "Name " + std::to_string(++lastName_) + "x";
                catalog->rename(key, name);
                noteRecord(oldName, store->record(key)->name);
                break;
            }
            case 3: catalog->setAliases(key, {"Mail", "post " + std::to_string(below(9)) + "x"}); break;
            case 4:
                catalog->setIcon(key, chance(50) ? std::optional<std::string>("envelope") : std::nullopt);
                if (!record) noteRecord("no record", "");
                break;
            case 5:
                catalog->forget(key);
                if (const auto found = names_.find(oldName); record && found != names_.end())
                    names_.erase(found);
                break;
            case 6: {
                if (catalog->orphans->empty()) break;
                const Orphan orphan = oneOf(*catalog->orphans);
                const bool fits = catalog->desktop(key) != nullptr;
                catalog->attach(orphan.key, key);
                if (fits && record) names_.erase(names_.find(oldName));
                break;
            }
            case 7: {
                const DisplayDesktops& display = oneOf(*catalog->displays);
                std::vector<std::string> keys = {"gone", key};
                for (const Desktop& desktop : display.desktops) keys.push_back(desktop.key);
                std::shuffle(keys.begin(), keys.end(), random_);
                catalog->commitOrder(keys, display.display.uuid);
                break;
            }
            }
        } catch (const NameError&) {
            ASSERT_EQ(store->file(), contents); // a refused edit changes nothing
        }
    }

    // What the disk does.

    void useDisk() {
        const fs::path away = folder.path() / "away";
        switch (below(4)) {
        case 0: // writing fails, and works again with the next change
            store->saveNow();
            fs::rename(url.parent_path(), away);
            std::ofstream(url.parent_path()) << "in the way";
            edit();
            loop.advance(debounce);
            store->flush();
            EXPECT_THROW(store->saveNow(), std::exception);
            fs::remove(url.parent_path());
            fs::rename(away, url.parent_path());
            break;
        case 1:
        case 2: { // an orderly restart
            catalog->refresh();
            store->saveNow();
            const auto before = inWholeSeconds(store->file()->desktops);
            const auto order = store->file()->order;
            start();
            EXPECT_EQ(inWholeSeconds(store->file()->desktops), before);
            EXPECT_EQ(store->file()->order, order);
            break;
        }
        case 3: { // the file is damaged between restarts: it is set aside, and was not lost
            store->saveNow();
            const std::string whole = readFile(url);
            const std::string damaged = whole.substr(0, static_cast<std::size_t>(below(whole.size() - 1)));
            catalog.reset();
            store.reset();
            std::ofstream(url, std::ios::trunc) << damaged;
            start();
            ASSERT_TRUE(store->recoveredFromCorruptFile());
            EXPECT_EQ(readFile(*store->recoveredFromCorruptFile()), damaged);
            names_.clear();
            break;
        }
        }
    }

    void check() {
        const auto contents = store->file();
        std::multiset<std::string> stored;
        for (const auto& [key, record] : contents->desktops) stored.insert(record.name);
        ASSERT_EQ(stored, names_) << "a name was lost or came twice";

        std::set<std::string> found;
        for (const Orphan& orphan : *catalog->orphans) ASSERT_TRUE(found.insert(orphan.key).second);
        for (const DisplayDesktops& display : *catalog->displays) {
            int number = 0;
            for (const Desktop& desktop : display.desktops) {
                const DesktopRecord* record = contents->record(desktop.key);
                ASSERT_EQ(desktop.record, record ? std::optional(*record) : std::nullopt);
                if (record) {
                    ASSERT_TRUE(found.insert(desktop.key).second) << "one record, two Spaces";
                }
                if (desktop.space.kind == SpaceKind::user) {
                    ASSERT_EQ(desktop.userNumber, ++number);
                }
            }
        }
        ASSERT_EQ(found.size(), contents->desktops.size()) << "a record is neither shown nor an orphan";
        checkAgainstAFreshCatalog();
    }
    /// What was built step by step is what a catalog that has seen nothing before builds at once.
    void checkAgainstAFreshCatalog() {
        testing::ScriptedProvider same(**catalog->snapshot, {}, {}, provider.names);
        const auto contents = store->file();
        const DesktopCatalog fresh(loop, same, *store);
        ASSERT_EQ(store->file(), contents) << "a second rebuild still changed something";
        ASSERT_EQ(*fresh.displays, *catalog->displays);
        ASSERT_EQ(*fresh.orphans, *catalog->orphans);
    }

    std::mt19937 random_;
    std::vector<DisplaySpaces> world_;
    std::vector<DisplaySpaces> unplugged_;
    std::uint64_t lastID_ = 0;
    int lastName_ = 0;
    std::multiset<std::string> names_;
};

TEST_F(RandomWalk, LosesNoName) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_NO_FATAL_FAILURE(begin(seed));
        for (int step = 0; step < 300; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            loop.advance(0.1 * below(4));
            if (chance(2))
                useDisk();
            else if (chance(50))
                edit();
            else
                changeWorld();
            if (chance(60)) refreshSometimesInVain();
            ASSERT_NO_FATAL_FAILURE(check());
            ASSERT_FALSE(HasFailure());
        }
        store->saveNow();
        const NameStoreFile onDisk = NameStoreCodec::decode(readFile(url), loop.date());
        ASSERT_EQ(onDisk.desktops, inWholeSeconds(store->file()->desktops));
        ASSERT_EQ(onDisk.order, store->file()->order);
    }
}

/// With the catalog up to date and no Space added or removed, new uuids cost no desktop its name.
TEST_F(RandomWalk, NewUuidsKeepTheNames) {
    for (unsigned seed = 100; seed < 400; ++seed) {
        begin(seed);
        std::map<std::uint64_t, std::string> nameOf;
        for (const Desktop& desktop : catalog->desktops()) {
            if (desktop.space.kind == SpaceKind::fullscreen || desktop.space.uuid.empty()) continue;
            const std::string name = "Name " + desktop.space.id.text() + "x";
            catalog->rename(desktop.key, name);
            nameOf[desktop.space.id.raw] = name;
        }
        for (DisplaySpaces& display : world_)
            for (Space& space : display.spaces)
                if (!space.uuid.empty() && chance(70)) space.uuid = "U" + std::to_string(++lastID_);
        look();
        catalog->refresh();
        for (const Desktop& desktop : catalog->desktops()) {
            const auto named = nameOf.find(desktop.space.id.raw);
            if (named != nameOf.end()) {
                ASSERT_EQ(desktop.displayName(), named->second) << "seed " << seed;
            }
        }
        ASSERT_TRUE(catalog->orphans->empty());
    }
}

} // namespace
} // namespace lumnara
