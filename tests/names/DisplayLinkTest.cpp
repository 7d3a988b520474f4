#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "core/names/NameStore.h"
#include "core/names/NameStoreCodec.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

using DisplayLink::Members;
using Lines = std::vector<std::string>;

TEST(DisplayLink, TellsLinkKeysFromOthers) {
    EXPECT_EQ(DisplayLink::id("link:AB12CD34"), "AB12CD34");
    EXPECT_EQ(DisplayLink::id("link:"), "");
    for (const char* key : {"", "link", "Link:AB12CD34", "primary:link:AB12CD34"})
        EXPECT_EQ(DisplayLink::id(key), std::nullopt) << key;
    const std::string id = DisplayLink::newID();
    EXPECT_EQ(id.size(), 8u);
    EXPECT_NE(id, DisplayLink::newID());
    EXPECT_EQ(DisplayLink::id(DisplayLink::key(id)), id);
}

TEST(DisplayLink, KnowsAGroupAndItsMembers) {
    const Members three = {{"A", "U1"}, {"B", "V1"}, {"C", "W1"}};
    EXPECT_EQ(DisplayLink::ordered(three, "U1"), (Lines{"V1", "W1", "U1"}));
    EXPECT_EQ(DisplayLink::ordered(three, "gone"), (Lines{"U1", "V1", "W1"}));
    EXPECT_TRUE(DisplayLink::isGroup(three));
    for (const Members& members : {Members{}, Members{{"A", "U1"}}, Members{{"A", "U1"}, {"B", "U1"}}})
        EXPECT_FALSE(DisplayLink::isGroup(members));

    NameStoreFile file;
    EXPECT_EQ(DisplayLink::groupOf(file, "U1"), std::nullopt);
    file.links = {{"ONE", {{"A", "U2"}, {"B", "V2"}}}, {"TWO", three}};
    EXPECT_EQ(DisplayLink::groupOf(file, "W1"), "TWO");
    EXPECT_EQ(DisplayLink::groupOf(file, "A"), std::nullopt); // a display is no member
    file.desktops["link:TWO"].name = "Mail";
    DisplayLink::remove(file, "gone");
    DisplayLink::remove(file, "TWO");
    EXPECT_EQ(file.record("link:TWO"), nullptr);
    DisplayLink::remove(file, "ONE");
    EXPECT_FALSE(file.links); // a file without links is written as before there were any
}

class LinkStoreTest : public ::testing::Test {
protected:
    LinkStoreTest() { open(); }

    void open() {
        store.reset();
        store = std::make_unique<NameStore>(loop, url);
    }
    /// Opens a file with these links, and names for all the Spaces and groups that the tests use.
    void openWith(const std::string& links) {
        store.reset();
        std::ofstream(url) << R"({"updatedAt":"2026-01-05T09:00:00Z","links":)" << links << R"(,"desktops":{)"
                           << R"("U1":{"name":"Mail"},"V1":{"name":"Post"},"link:ONE":{"name":"Both"},)"
                           << R"("link:TWO":{"name":"Others"}}})";
        open();
    }
    /// With each of these Spaces live on the display that a group has for it.
    bool prune(const std::vector<std::string>& live, double clockError = 0) {
        LinkPruning::LiveKeys keys;
        for (const std::string& spaceKey : live) {
            keys.emplace(spaceKey, "elsewhere");
            if (!store->file()->links) continue;
            for (const auto& [id, members] : *store->file()->links)
                for (const auto& [display, member] : members)
                    if (member == spaceKey) keys[spaceKey] = display;
        }
        return prune(keys, clockError);
    }
    bool prune(const LinkPruning::LiveKeys& live, double clockError = 0) {
        return store->pruneLinks(live, loop.date().plusSeconds(clockError));
    }
    const Members* group(const char* id) { return DisplayLink::members(*store->file(), id); }
    std::string name(const char* key) {
        const auto record = store->record(key);
        return record ? record->name : "none";
    }

    testing::TemporaryFolder folder;
    const std::filesystem::path url = folder / "desktops.json";
    async::TestLoop loop;
    testing::LogLines log;
    std::unique_ptr<NameStore> store;
};

constexpr const char* twoGroups =
    R"({"ONE":{"DISPLAY-LEFT":"U1-and-more","DISPLAY-RIGHT":"V1"},"TWO":{"A":"U2","B":"V2","C":"W2"}})";

TEST_F(LinkStoreTest, SetAndRemoveChangeTheGroupWithItsRecord) {
    openWith(twoGroups);
    const auto before = store->file();
    store->setLink("TWO", {{"A", "U2"}, {"B", "V2"}, {"C", "W2"}});
    store->removeLink("gone", "no reason");
    EXPECT_EQ(store->file(), before); // the very same contents
    EXPECT_EQ(log.take(), Lines{});

    store->setLink("TWO", {{"A", "U3"}, {"B", "V2"}});
    EXPECT_EQ(*group("TWO"), (Members{{"A", "U3"}, {"B", "V2"}}));
    EXPECT_EQ(name("link:TWO"), "Others");
    store->removeLink("ONE", "unlinked");
    EXPECT_EQ(log.take(), Lines{"Lumnara link ONE: unlinked"});
    EXPECT_EQ(group("ONE"), nullptr);
    EXPECT_EQ(name("link:ONE"), "none");
    EXPECT_EQ(name("U1"), "Mail");

    store->saveNow();
    const NameStoreFile inMemory = *store->file();
    open();
    EXPECT_EQ(store->file()->links, inMemory.links);
    EXPECT_EQ(store->file()->desktops, inMemory.desktops);
}

TEST_F(LinkStoreTest, AMissingMemberHasFiveSeconds) {
    openWith(twoGroups);
    const auto before = store->file();
    EXPECT_FALSE(prune(Lines{"U1-and-more", "V1", "U2", "V2", "W2"}));
    EXPECT_TRUE(prune(Lines{"U1-and-more", "U2", "V2"})); // V1 and W2 are missing
    loop.advance(4.999);
    EXPECT_TRUE(
        prune(Lines{"U1-and-more", "U2", "V2", "W2"})); // W2 is back, and begins anew when it goes again
    EXPECT_EQ(store->file(), before);
    EXPECT_EQ(log.take(), Lines{});
    loop.advance(0.001);
    EXPECT_TRUE(prune(Lines{"U1-and-more", "U2", "V2"}));
    EXPECT_EQ(log.take(), Lines{"Lumnara link ONE: pruned, desktop gone: V1 on DISPLAY- (3 live keys)"});
    EXPECT_EQ(group("ONE"), nullptr);
    EXPECT_EQ(name("link:ONE"), "none");
    EXPECT_EQ(name("V1"), "Post");
    EXPECT_EQ(group("TWO")->size(), 3u);

    loop.advance(5);
    EXPECT_FALSE(prune(Lines{"U2", "V2"}));
    EXPECT_EQ(log.take(), Lines{"Lumnara link TWO: pruned, desktop gone: W2 on C (2 live keys)"});
    EXPECT_EQ(*group("TWO"), (Members{{"A", "U2"}, {"B", "V2"}})); // two are still a group
    EXPECT_EQ(name("link:TWO"), "Others");
}

TEST_F(LinkStoreTest, ALongGoneMemberBeginsItsTimeAnewInALaterGroup) {
    openWith(R"({"ONE":{"A":"U1","B":"V1"}})");
    prune(Lines{"U1"});
    store->removeLink("ONE", "unlinked");
    prune(Lines{"U1", "V1"});
    loop.advance(100);
    store->setLink("ONE", {{"A", "U1"}, {"B", "V1"}});
    EXPECT_TRUE(prune(Lines{"U1"}));
    EXPECT_TRUE(group("ONE"));
    open(); // and after a restart
    openWith(R"({"ONE":{"A":"U1","B":"V1"}})");
    loop.advance(100);
    EXPECT_TRUE(prune(Lines{"U1"}));
    EXPECT_TRUE(group("ONE"));
    EXPECT_TRUE(prune(Lines{"U1"}, -3600)); // the clock is set back
    loop.advance(5);
    EXPECT_FALSE(prune(Lines{"U1"}, -3600));
    EXPECT_FALSE(group("ONE"));
}

TEST_F(LinkStoreTest, AMemberOnTheDisplayOfAnotherIsMissing) {
    openWith(R"({"ONE":{"A":"U1","B":"V1","C":"W1"}})");
    EXPECT_FALSE(prune(LinkPruning::LiveKeys{{"U1", "A"}, {"V1", "D"}, {"W1", "C"}}))
        << "a display of its own is as good as its home";
    // B and C are unplugged, and their desktops have come to A.
    const LinkPruning::LiveKeys gathered{{"U1", "a"}, {"V1", "a"}, {"W1", "a"}};
    EXPECT_TRUE(prune(gathered));
    loop.advance(4);
    EXPECT_FALSE(prune(LinkPruning::LiveKeys{{"U1", "A"}, {"V1", "B"}, {"W1", "C"}})) << "and back in time";
    EXPECT_TRUE(prune(gathered));
    loop.advance(5);
    EXPECT_FALSE(prune(gathered));
    EXPECT_FALSE(group("ONE"));
    EXPECT_EQ(log.take(), Lines{"Lumnara link ONE: pruned, desktop gone: V1 on B, W1 on C (3 live keys)"});

    openWith(R"({"ONE":{"A":"U1","B":"V1","C":"W1"}})");
    const LinkPruning::LiveKeys withoutC{{"U1", "A"}, {"V1", "B"}, {"W1", "A"}};
    prune(withoutC);
    loop.advance(5);
    prune(withoutC);
    EXPECT_EQ(*group("ONE"), (Members{{"A", "U1"}, {"B", "V1"}}));
}

TEST_F(LinkStoreTest, PruningWritesOnlyWhatChanged) {
    openWith(twoGroups);
    store->saveNow();
    std::filesystem::remove(url);
    for (int i = 0; i < 10; ++i) {
        prune(i % 2 ? Lines{"U1-and-more"} : Lines{"U1-and-more", "V1", "U2", "V2", "W2"});
        loop.advance(2);
        store->flush();
    }
    EXPECT_FALSE(std::filesystem::exists(url));
    prune(Lines{});
    loop.advance(5);
    prune(Lines{});
    loop.advance(0.25);
    store->flush();
    const NameStoreFile onDisk = NameStoreCodec::decode(readFile(url), loop.date());
    EXPECT_FALSE(onDisk.links);
    EXPECT_EQ(onDisk.desktops.size(), 2u);
}

TEST_F(LinkStoreTest, OddGroupsOfAFileAreReadWholeAndPrunedByTheSameRules) {
    openWith(R"({"ONE":{"A":"U1"},"TWO":{},"SAME":{"A":"U1","B":"U1"},"DEAD":{"A":"X","B":"Y"},
                 "SPELT":{"a":"U1","A":"V1"},"":{"":"U1"," ":""}})");
    EXPECT_FALSE(store->recoveredFromCorruptFile());
    EXPECT_EQ(store->file()->links->size(), 6u);
    EXPECT_EQ(store->file()->desktops.size(), 4u);
    store->setName("U1", "Letters");
    store->saveNow();
    const NameStoreFile inMemory = *store->file();
    open();
    EXPECT_EQ(store->file()->links, inMemory.links);

    EXPECT_TRUE(prune(Lines{"U1", "V1"}));
    loop.advance(5);
    EXPECT_FALSE(prune(Lines{"U1", "V1"}));
    EXPECT_FALSE(store->file()->links) << "one display, however it is spelt, makes no pair";
    EXPECT_EQ(store->file()->desktops.size(), 2u);
    EXPECT_EQ(name("U1"), "Letters");

    for (const char* links : {R"({"ONE":["U1","V1"]})", R"({"ONE":{"A":7}})", "[]", R"({"ONE":null})"}) {
        openWith(links); // set aside whole, not lost
        ASSERT_TRUE(store->recoveredFromCorruptFile()) << links;
        EXPECT_NE(readFile(*store->recoveredFromCorruptFile()).find(links), std::string::npos);
    }
}

} // namespace
} // namespace lumnara
