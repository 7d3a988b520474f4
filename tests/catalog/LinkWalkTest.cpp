#include "core/base/Files.h"
#include "core/names/DisplayLink.h"
#include "core/names/NameError.h"
#include "core/names/NameStoreCodec.h"
#include "tests/catalog/CatalogTest.h"

#include <map>
#include <random>
#include <set>

namespace lumnara {
namespace {

/// A user who links, names and forgets at will, and displays that come and go. What has to be stored is
/// told by a plain model of the rules; what has to hold whatever happened is checked after each step.
class LinkWalk : public testing::CatalogTest {
protected:
    LinkWalk() { debounce = 1e6; } // written by saveNow() alone

    using Group = std::map<std::string, std::string>; // Space key by display

    int below(std::size_t n) { return static_cast<int>(random_() % n); }
    bool chance(int percent) { return below(100) < percent; }

    void begin(unsigned seed) {
        random_.seed(seed);
        std::filesystem::remove_all(url.parent_path());
        world_.clear();
        plugged_ = {true, true, true};
        names_.clear();
        groups_.clear();
        missing_.clear();
        lastID_ = 0;
        for (const char* uuid : {"A", "B", "C"}) {
            world_.push_back(testing::makeDisplay(uuid, {}));
            for (int n = 0; n < 3; ++n) world_.back().spaces.push_back(newSpace());
        }
        provider.current = reading();
        start();
    }

    // The world.

    Space newSpace() {
        ++lastID_;
        return testing::makeSpace(lastID_, "U" + std::to_string(lastID_));
    }
    SpaceSnapshot reading() {
        SpaceSnapshot now;
        for (std::size_t i = 0; i < world_.size(); ++i)
            if (plugged_[i])
                now.displays.push_back(testing::makeDisplay(world_[i].display.uuid, world_[i].spaces));
        now.takenAt = loop.date();
        return now;
    }
    void changeWorld() {
        const auto i = static_cast<std::size_t>(below(world_.size()));
        auto& spaces = world_[i].spaces;
        switch (below(6)) {
        case 0: spaces.push_back(newSpace()); break;
        case 1:
            if (spaces.size() > 2) spaces.erase(spaces.begin() + below(spaces.size()));
            break;
        case 2: { // a Space moves to another display
            if (spaces.size() < 3) break;
            world_[(i + 1) % world_.size()].spaces.push_back(spaces.back());
            spaces.pop_back();
            break;
        }
        default: plugged_[i] = !plugged_[i];
        }
    }
    void refresh() {
        provider.current = reading();
        catalog->refresh();
        prune();
    }

    // The model of what is stored: the name of each key, and the groups by id.

    /// The members of all groups that stand on a display of their own, each group's those at home first.
    std::set<std::string> standing() {
        std::map<std::string, std::string> displayOf;
        for (const DisplaySpaces& display : provider.current.displays)
            for (const Space& space : display.spaces) displayOf[space.uuid] = display.display.uuid;
        std::set<std::string> keys;
        for (const auto& [id, group] : groups_) {
            std::map<std::string, std::string> standsOn;
            for (const auto& [home, key] : group)
                if (displayOf.contains(key) && displayOf[key] == home) standsOn.emplace(home, key);
            for (const auto& [home, key] : group)
                if (displayOf.contains(key)) standsOn.emplace(displayOf[key], key);
            for (const auto& [display, key] : standsOn) keys.insert(key);
        }
        return keys;
    }
    void dissolve(const std::string& id) {
        groups_.erase(id);
        names_.erase("link:" + id);
    }
    void leave(const std::string& spaceKey) {
        const auto before = groups_;
        for (const auto& [id, members] : before) {
            std::erase_if(groups_[id], [&](const auto& member) { return member.second == spaceKey; });
            if (groups_[id].size() < 2) dissolve(id);
        }
    }
    void prune() {
        const auto alive = standing();
        std::set<std::string> members;
        const auto before = groups_;
        for (const auto& [id, group] : before)
            for (const auto& [display, key] : group) members.insert(key);
        std::erase_if(missing_, [&](const auto& m) { return !members.contains(m.first); });
        for (const std::string& key : members) {
            if (alive.contains(key))
                missing_.erase(key);
            else if (loop.date() >= missing_.try_emplace(key, loop.date()).first->second.plusSeconds(5))
                leave(key);
        }
    }
    std::string groupOf(const std::string& spaceKey) {
        for (const auto& [id, group] : groups_)
            for (const auto& [display, key] : group)
                if (key == spaceKey) return id;
        return "";
    }

    // The user.

    Desktop anyDesktop() {
        const auto all = catalog->desktops();
        return all.empty() ? Desktop{} : all[static_cast<std::size_t>(below(all.size()))];
    }
    void link() {
        const Desktop a = anyDesktop();
        const Desktop b = anyDesktop();
        const bool together = a.display != b.display && !groupOf(a.spaceKey).empty() &&
                              groupOf(a.spaceKey) == groupOf(b.spaceKey);
        const auto before = store->file();
        const bool linked = catalog->link(a.spaceKey, b.spaceKey);
        ASSERT_EQ(linked, a.display != b.display);
        if (!linked || together) {
            ASSERT_EQ(store->file(), before);
            return;
        }
        leave(a.spaceKey);
        leave(b.spaceKey);
        const std::string id(*DisplayLink::groupOf(*store->file(), a.spaceKey));
        groups_[id] = {{a.display.uuid, a.spaceKey}, {b.display.uuid, b.spaceKey}};
        const Desktop& named = a.record || !b.record ? a : b;
        names_["link:" + id] = named.record ? named.record->name : "";
        prune();
    }
    void act() {
        const Desktop desktop = anyDesktop();
        if (desktop.key.empty()) return;
        switch (below(8)) {
        case 0:
        case 1:
        case 2: link(); break;
        case 3: {
            const std::string id = groupOf(desktop.spaceKey);
            catalog->unlink(desktop.spaceKey, "unlinked");
            if (!id.empty()) dissolve(id);
            break;
        }
        case 4:
            catalog->forget(desktop.key);
            names_.erase(desktop.key);
            if (desktop.isLinked()) dissolve(desktop.key.substr(5));
            break;
        case 5:
            catalog->setLinkMode(chance(70) ? DisplayLinkMode::linked : DisplayLinkMode::independent);
            break;
        default:
            const std::string name = "Name " + std::to_string(++lastName_) + "x";
            catalog->rename(desktop.key, name);
            names_[desktop.key] = name;
        }
        catalog->refresh(); // an edit that changes nothing prunes nothing
        prune();
    }
    void restart() {
        store->saveNow();
        const auto mode = catalog->linkMode();
        start();
        missing_.clear(); // its memory ends with the program
        catalog->setLinkMode(mode);
        prune();
    }

    /// A record whose desktop got another uuid goes on under that one's key; the log tells how many did.
    /// Names are unique among desktops.
    void followReattachments() {
        for (; linesRead_ < lines.size(); ++linesRead_) {
            prunings_ += lines[linesRead_].find("pruned, desktop gone") != std::string::npos;
            if (lines[linesRead_].find("re-attached by position") == std::string::npos) continue;
            const auto contents = store->file();
            const auto moved = std::find_if(names_.begin(), names_.end(), [&](const auto& entry) {
                return !contents->record(entry.first) &&
                       lines[linesRead_].find('"' + entry.second + '"') != std::string::npos;
            });
            ASSERT_NE(moved, names_.end());
            for (const auto& [key, record] : contents->desktops)
                if (!DisplayLink::id(key) && record.name == moved->second) {
                    auto node = names_.extract(moved);
                    node.key() = key;
                    names_.insert(std::move(node));
                    break;
                }
        }
    }

    void check() {
        followReattachments();
        const auto contents = store->file();
        std::map<std::string, std::string> stored;
        for (const auto& [key, record] : contents->desktops) stored[key] = record.name;
        ASSERT_EQ(stored, names_);

        std::map<std::string, Group> groups;
        std::set<std::string> members;
        if (contents->links)
            for (const auto& [id, group] : *contents->links) {
                groups[id] = Group(group.begin(), group.end());
                ASSERT_GE(group.size(), 2u);
                ASSERT_TRUE(contents->record(DisplayLink::key(id)));
                for (const auto& [display, key] : group)
                    ASSERT_TRUE(members.insert(key).second) << key << " is in two groups";
            }
        ASSERT_EQ(groups, groups_);
        for (const auto& [key, record] : contents->desktops)
            if (const auto id = DisplayLink::id(key)) {
                ASSERT_TRUE(DisplayLink::members(*contents, *id)) << "a record without its group";
            }
        checkWhatIsShown(*contents);
    }
    void checkWhatIsShown(const NameStoreFile& contents) {
        std::map<std::string, int> linked;
        std::set<std::string> alive;
        for (const DisplayDesktops& display : *catalog->displays) {
            std::set<std::string> keys;
            for (const Desktop& desktop : display.desktops) {
                ASSERT_TRUE(keys.insert(desktop.key).second) << "two tiles of one key on a display";
                alive.insert(desktop.spaceKey);
                const DesktopRecord* record = contents.record(desktop.key);
                ASSERT_EQ(desktop.record, record ? std::optional(*record) : std::nullopt);
                if (!desktop.isLinked()) continue;
                ASSERT_EQ(desktop.key, "link:" + groupOf(desktop.spaceKey));
                ASSERT_EQ(catalog->linkMode(), DisplayLinkMode::linked);
                ++linked[desktop.key];
            }
        }
        int active = 0;
        for (const auto& [key, count] : linked) {
            active += count >= 2;
            ASSERT_EQ(catalog->linkedMembers(key).size(), static_cast<std::size_t>(count));
        }
        ASSERT_EQ(*catalog->activeLinkCount, active);

        std::set<std::string> orphans;
        for (const auto& [key, record] : contents.desktops)
            if (!DisplayLink::id(key) && !alive.contains(key)) orphans.insert(key);
        const auto shownOrphans = orphanKeys();
        ASSERT_EQ(std::set<std::string>(shownOrphans.begin(), shownOrphans.end()), orphans);
    }
    void checkDisk() {
        store->saveNow();
        const NameStoreFile onDisk = NameStoreCodec::decode(readFile(url), loop.date());
        ASSERT_EQ(onDisk.links, store->file()->links);
        ASSERT_EQ(onDisk.desktops.size(), names_.size());
        for (const auto& [key, name] : names_) ASSERT_EQ(onDisk.desktops.at(key).name, name);
    }

    std::mt19937 random_;
    std::vector<DisplaySpaces> world_;
    std::vector<bool> plugged_;
    std::uint64_t lastID_ = 0;
    int lastName_ = 0;
    std::map<std::string, std::string> names_;
    std::map<std::string, Group> groups_;
    std::map<std::string, Date> missing_;
    std::size_t linesRead_ = 0;
    int prunings_ = 0;
};

TEST_F(LinkWalk, LosesNoNameButByTheRules) {
    std::size_t mostGroups = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        begin(seed);
        for (int step = 0; step < 300; ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            if (chance(1))
                restart();
            else if (chance(60))
                act();
            else
                changeWorld();
            if (chance(70)) refresh();
            ASSERT_NO_FATAL_FAILURE(check());
            ASSERT_FALSE(HasFailure());
            mostGroups = std::max(mostGroups, groups_.size());
            loop.advance(0.5 * below(5));
            catalog->refresh(); // as it does by itself at some moment after a grace
            prune();
        }
        ASSERT_NO_FATAL_FAILURE(checkDisk());
    }
    EXPECT_GE(mostGroups, 3u); // the walk went where it should
    EXPECT_GE(prunings_, 100);
}

} // namespace
} // namespace lumnara
