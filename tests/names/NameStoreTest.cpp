#include "core/names/NameStore.h"
#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "core/names/NameStoreCodec.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <system_error>
#include <thread>
#include <vector>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

class NameStoreTest : public ::testing::Test {
protected:
    std::unique_ptr<NameStore> open() {
        auto store = std::make_unique<NameStore>(loop_, url_);
        store->onSaved = [this] { ++saves_; };
        return store;
    }
    void put(const std::string& text) {
        fs::create_directories(url_.parent_path());
        std::ofstream(url_) << text;
    }
    NameStoreFile onDisk() { return NameStoreCodec::decode(readFile(url_), loop_.date()); }
    /// Lets the time pass and waits for the writes that it brings.
    void pass(double seconds, NameStore& store) {
        loop_.advance(seconds);
        store.flush();
    }

    static DesktopRecord named(std::string name) {
        DesktopRecord record;
        record.name = std::move(name);
        return record;
    }

    testing::TemporaryFolder folder_;
    const fs::path url_ = folder_.path() / "data" / "Lumnara" / "desktops.json";
    async::TestLoop loop_;
    std::atomic<int> saves_ = 0;
};

TEST_F(NameStoreTest, TheFirstNameMakesTheFolderAndTheFile) {
    const auto store = open();
    EXPECT_TRUE(store->file()->desktops.empty());
    EXPECT_FALSE(store->loadError() || store->recoveredFromCorruptFile());
    store->setRecord("U1", named("Mail"));
    EXPECT_EQ(store->record("U1"), named("Mail"));
    pass(0.249, *store);
    EXPECT_FALSE(fs::exists(url_.parent_path()));
    pass(0.001, *store);
    EXPECT_EQ(onDisk().record("U1")->name, "Mail");
    EXPECT_EQ(onDisk().updatedAt, loop_.date().plusSeconds(-0.25));
    EXPECT_EQ(fs::status(url_).permissions(), fs::perms(0600));
    EXPECT_EQ(fs::status(url_.parent_path()).permissions(), fs::perms(0700));
}

TEST_F(NameStoreTest, ABurstIsWrittenOnceAfterItsLastChange) {
    const auto store = open();
    for (int i = 0; i < 10; ++i) {
        store->setRecord("U" + std::to_string(i), named("Mail"));
        pass(0.2, *store);
        EXPECT_EQ(saves_, 0);
    }
    pass(0.05, *store);
    EXPECT_EQ(saves_, 1);
    EXPECT_EQ(onDisk().desktops.size(), 10u);
    pass(60, *store);
    EXPECT_EQ(saves_, 1);
}

TEST_F(NameStoreTest, EachSetterChangesOneFieldOfAnExistingRecord) {
    const auto store = open();
    const DesktopRecord full{
        "Mail", {"post"}, "envelope", "teal", true, {1'000}, LastSeen{"D", "Display", 1, {}, 2}, {}};
    store->setRecord("U1", full);
    DesktopRecord expected = full;
    store->setName("U1", expected.name = "Web");
    store->setAliases("U1", expected.aliases = {"net"});
    store->setIcon("U1", expected.icon = std::nullopt);
    store->setColor("U1", expected.color = "red");
    store->setDimmed("U1", expected.isDimmed = false);
    EXPECT_EQ(store->record("U1"), expected);

    const auto before = store->file();
    store->setName("gone", "x");
    store->setDimmed("gone", true);
    EXPECT_EQ(store->file(), before); // the very same contents
    store->removeRecord("U1");
    EXPECT_EQ(store->record("U1"), std::nullopt);
    EXPECT_EQ(before->record("U1")->name, "Web"); // a reader's contents never change
}

TEST_F(NameStoreTest, SaveNowWritesAtOnceAndInPlaceOfThePendingWrite) {
    const auto store = open();
    store->setRecord("U1", named("Mail"));
    store->saveNow();
    EXPECT_EQ(onDisk().record("U1")->name, "Mail");
    pass(1, *store);
    EXPECT_EQ(saves_, 1);
    store->setName("U1", "Web");
    pass(0.1, *store); // the debounce has begun
    store->saveNow();
    pass(1, *store);
    EXPECT_EQ(saves_, 2);
    store->setName("U1", "Post");
    store->saveNow();
    store->setName("U1", "Net");
    pass(1, *store);
    EXPECT_EQ(saves_, 4);
    EXPECT_EQ(onDisk().record("U1")->name, "Net");
}

TEST_F(NameStoreTest, AnOlderSchemaIsWrittenAsThePresentOne) {
    put(R"({"desktops":{"U1":{"name":"Mail"}},"schemaVersion":1,"updatedAt":"2025-01-05T09:00:00Z"})");
    const auto store = open();
    EXPECT_EQ(store->record("U1")->name, "Mail");
    EXPECT_EQ(store->record("U1")->createdAt, loop_.date());
    store->setDimmed("U1", true);
    pass(0.25, *store);
    EXPECT_NE(readFile(url_).find("\"schemaVersion\": 2"), std::string::npos);
}

TEST_F(NameStoreTest, AFileThatCannotBeReadIsLeftAlone) {
    fs::create_directories(url_); // reading a folder fails for every user
    const auto store = open();
    EXPECT_EQ(store->loadError(), NameStoreError::notLoaded("Is a directory"));
    store->setRecord("U1", named("Mail"));
    EXPECT_EQ(store->record("U1")->name, "Mail");
    fs::remove(url_);
    pass(1, *store);
    EXPECT_THROW(store->saveNow(), NameStoreError);
    EXPECT_FALSE(fs::exists(url_));
}

TEST_F(NameStoreTest, OfAKeyThatStandsTwiceTheLastCountsAndItIsTold) {
    put(R"({"desktops":{"U1":{"name":"Mail","icon":"x"},"U1":{"name":"Web","name":"Net"}},
            "updatedAt":"2026-01-05T09:00:00Z"})");
    testing::LogLines log;
    const auto store = open();
    EXPECT_FALSE(store->recoveredFromCorruptFile());
    DesktopRecord last = named("Net");
    last.createdAt = loop_.date();
    EXPECT_EQ(store->record("U1"), last);
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("desktops.json"), std::string::npos);
}

TEST_F(NameStoreTest, AFailedWriteIsTriedAgainWithTheNextChange) {
    const auto store = open();
    std::ofstream(folder_ / "data") << "in the way of the folder";
    store->setRecord("U1", named("Mail"));
    pass(1, *store);
    EXPECT_THROW(store->saveNow(), std::system_error);
    EXPECT_EQ(saves_, 0);

    fs::remove(folder_ / "data");
    pass(1, *store);
    EXPECT_FALSE(fs::exists(url_));
    store->setDimmed("U1", true);
    pass(0.25, *store);
    EXPECT_EQ(onDisk().record("U1")->name, "Mail");
}

TEST_F(NameStoreTest, LastSeenIsWrittenOnlyWhenThePlaceChanges) {
    const auto store = open();
    store->setRecord("U1", named("Mail"));
    store->saveNow();
    const auto seen = [&](LastSeen place) {
        const auto before = store->file();
        store->updateLastSeen({{"U1", place}, {"no record", place}});
        return store->file() != before;
    };
    const LastSeen place{"D", "Display", 1, {1'000}, 4};
    EXPECT_TRUE(seen(place));
    EXPECT_EQ(store->record("U1")->lastSeen, place);
    EXPECT_EQ(store->record("no record"), std::nullopt);
    EXPECT_FALSE(seen(place));
    EXPECT_FALSE(seen({"D", "Other name", 1, {2'000}, 4}));
    pass(1, *store);
    EXPECT_EQ(saves_, 2);
    EXPECT_TRUE(seen({"E", "Display", 1, {1'000}, 4}));
    EXPECT_TRUE(seen({"E", "Display", 2, {1'000}, 4}));
    EXPECT_TRUE(seen({"E", "Display", 2, {1'000}, 5}));
    EXPECT_TRUE(seen({"E", "Display", 2, {1'000}, {}}));
}

TEST_F(NameStoreTest, AChangeThatThrowsChangesNothing) {
    const auto store = open();
    const auto before = store->file();
    EXPECT_THROW(store->change([](NameStoreFile& file) {
        file.desktops["U1"].name = "half";
        throw std::runtime_error("stop");
    }),
                 std::runtime_error);
    EXPECT_EQ(store->file(), before);
    store->setRecord("U1", named("Mail")); // the lock is free again
}

TEST_F(NameStoreTest, OrderAndLinksSurviveAsTheyStand) {
    put(R"({"desktops":{},"updatedAt":"2026-01-05T09:00:00Z","order":{"Aa":["U1"],"B":["U2"]},
            "links":{"AB12CD34":{"A":"U1","B":"U2"}}})");
    auto store = open();
    store->setOrder("aA", {"U3", "U1"});
    store->saveNow();
    store = open();
    EXPECT_EQ(*store->file()->order,
              (NameStoreFile::Map<std::vector<std::string>>{{"Aa", {"U3", "U1"}}, {"B", {"U2"}}}));
    EXPECT_EQ(store->file()->links->at("AB12CD34").at("B"), "U2");
}

TEST_F(NameStoreTest, AChangeThatWaitsForTheMainThreadDiesWithTheStore) {
    auto store = open();
    store->setRecord("U1", named("Mail")); // the debounce is asked for, but not started
    store.reset();
    loop_.advance(1);
    store = open();
    store->setRecord("U1", named("Mail"));
    loop_.advance(0.1); // started, but not due
    store.reset();
    loop_.advance(1);
    EXPECT_EQ(saves_, 0);
}

TEST_F(NameStoreTest, ThreadsChangeReadAndSaveAtOnce) {
    const auto store = open();
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&store, t] {
            for (int i = 0; i < 50; ++i) {
                const std::string key = "U" + std::to_string(t) + "-" + std::to_string(i);
                store->setRecord(key, named("Mail"));
                store->setName(key, key);
                EXPECT_EQ(store->record(key)->name, key);
                store->updateLastSeen({{key, {"D", {}, i, {}, 50}}});
                EXPECT_GT(store->file()->desktops.size(), static_cast<std::size_t>(i));
            }
        });
    }
    for (int i = 0; i < 20; ++i) {
        loop_.advance(0.3);
        if (i % 4 == 0) store->saveNow();
    }
    threads.clear();
    pass(0.3, *store);
    EXPECT_EQ(onDisk().desktops.size(), 200u);
    EXPECT_EQ(onDisk().desktops, store->file()->desktops);
}

} // namespace
} // namespace lumnara
