#include "core/platform/linux/JsonDefaultsStore.h"

#include "core/async/PollLoop.h"
#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace lumnara {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// Counts how often a file was replaced, by what the kernel tells of its folder.
class ReplacementCounter {
public:
    explicit ReplacementCounter(const fs::path& file)
        : name_(file.filename()),
          inotify_(::inotify_init1(IN_NONBLOCK)) {
        // The kernel makes one of two equal events in a row; the making of the temporary files parts them.
        EXPECT_GE(::inotify_add_watch(inotify_, file.parent_path().c_str(), IN_MOVED_TO | IN_CREATE), 0);
    }
    ~ReplacementCounter() { ::close(inotify_); }

    /// Since the last call.
    int take() {
        alignas(inotify_event) char buffer[65'536];
        const ssize_t count = ::read(inotify_, buffer, sizeof buffer);
        int replaced = 0;
        for (ssize_t at = 0; at < count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
            replaced += (event->mask & IN_MOVED_TO) != 0 && name_ == event->name;
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
        return replaced;
    }

private:
    std::string name_;
    int inotify_;
};

class JsonDefaultsStoreTest : public ::testing::Test {
protected:
    json onDisk() const { return json::parse(readFile(file)); }

    /// As an editor saves that writes into the file itself.
    void edit(const std::string& text) const { std::ofstream(file) << text; }

    std::vector<fs::path> movedAside() const {
        std::vector<fs::path> found;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            if (entry.path().filename().string().starts_with("settings.json.corrupt-"))
                found.push_back(entry.path());
        return found;
    }

    /// Lets the main thread hear of what has reached the disk.
    void settle(JsonDefaultsStore& store) {
        store.saveNow();
        loop.runUntilIdle();
    }

    testing::TemporaryFolder folder;
    const fs::path file = folder / "settings.json";
    testing::LogLines log;
    async::TestLoop loop;
};

TEST_F(JsonDefaultsStoreTest, KeepsValuesOfEveryTypeForTheNextStart) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
    const std::vector<std::pair<std::string, DefaultsValue>> values = {
        {"yes", true},
        {"no", false},
        {"whole", std::numeric_limits<std::int64_t>::min()},
        {"wholeFloat", 2000.0},
        {"fraction", 0.1},
        {"text", "Ärger \"mit\" \\ 日本"},
        {"empty", std::string()},
        {"data", DefaultsData{bytes}},
        {"noData", DefaultsData{}},
    };
    {
        JsonDefaultsStore store(loop, folder.path() / "new" / "settings.json");
        EXPECT_FALSE(fs::exists(folder / "new"));
        for (const auto& [key, value] : values) store.set(key, value);
        store.set("infinite", 1.0);
        store.set("infinite", std::numeric_limits<double>::infinity());
        store.set("gone", 1.0);
        store.remove("gone");
    }
    JsonDefaultsStore store(loop, folder.path() / "new" / "settings.json");
    for (const auto& [key, value] : values) EXPECT_EQ(store.value(key), value) << key;
    EXPECT_FALSE(store.value("infinite"));
    EXPECT_FALSE(store.value("gone"));
    EXPECT_EQ(store.get<double>("whole"), -9223372036854775808.0);
    EXPECT_EQ(store.get<std::int64_t>("wholeFloat"), std::nullopt);
    EXPECT_EQ(store.get<bool>("whole"), std::nullopt);
}

TEST_F(JsonDefaultsStoreTest, LeavesAloneWhatItDoesNotKnow) {
    const std::string before = R"({"list": [1, {"a": null}], "null": null, "huge": 18446744073709551615,
                                   "half": {"data": "\u0100"}, "object": {"data": "x", "more": 1},
                                   "known": 1})";
    edit(before);
    JsonDefaultsStore store(loop, file);
    for (const char* key : {"list", "null", "huge", "half", "object"}) EXPECT_FALSE(store.value(key)) << key;

    store.set("known", std::int64_t{1});
    store.remove("missing");
    settle(store);
    EXPECT_EQ(readFile(file), before) << "nothing changed";

    store.set("known", std::int64_t{2});
    store.set("list", "a text now");
    store.remove("null");
    settle(store);
    json expected = json::parse(before);
    expected["known"] = 2;
    expected["list"] = "a text now";
    expected.erase("null");
    EXPECT_EQ(onDisk(), expected);
}

TEST_F(JsonDefaultsStoreTest, ASliderCostsAFewWritesASecond) {
    JsonDefaultsStore store(loop, file);
    ReplacementCounter writes(file);
    for (int i = 1; i <= 60; ++i) {
        store.set("board.tileWidth", 100.0 + i);
        loop.advance(1.0 / 60);
    }
    settle(store);
    const int dragged = writes.take();
    EXPECT_GE(dragged, 3); // it is also written while it lasts
    EXPECT_LE(dragged, 5);
    EXPECT_EQ(onDisk(), json({{"board.tileWidth", 160.0}}));

    store.set("board.tileWidth", 160.0);
    store.set("toggled", true);
    store.remove("toggled");
    settle(store);
    EXPECT_EQ(writes.take(), 0) << "set to what it was";
    store.set("board.tileWidth", std::int64_t{160});
    settle(store);
    EXPECT_EQ(writes.take(), 1) << "another type is another value";
}

TEST_F(JsonDefaultsStoreTest, SavesByItselfSoonAfterAChange) {
    async::PollLoop real;
    JsonDefaultsStore store(real, file);
    store.set("a", true);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(real.runUntil([&] { return fs::exists(file); }, 10));
    EXPECT_EQ(onDisk(), json({{"a", true}}));
}

// Two stores in one process stand for two processes: they share nothing but the file.
TEST_F(JsonDefaultsStoreTest, TwoProgramsShareTheFile) {
    JsonDefaultsStore ours(loop, file);
    JsonDefaultsStore theirs(loop, file);
    std::vector<std::string> heard;
    const auto hearing =
        ours.changedElsewhere.subscribe([&](const std::string& key) { heard.push_back(key); });

    theirs.set("both", "theirs");
    theirs.set("switch", true);
    settle(theirs);
    EXPECT_EQ(heard, (std::vector<std::string>{"both", "switch"}));
    EXPECT_EQ(ours.value("both"), DefaultsValue("theirs"));

    // Each has changes that the other hasn't read: both kinds stay, and of one key the later write.
    heard.clear();
    ours.set("ours", true);
    ours.set("both", "ours");
    theirs.remove("switch");
    theirs.set("both", "theirs again");
    theirs.saveNow();
    ours.saveNow();
    loop.runUntilIdle();
    EXPECT_EQ(onDisk(), json({{"ours", true}, {"both", "ours"}}));
    EXPECT_EQ(heard, (std::vector<std::string>{"switch"}));
    EXPECT_EQ(theirs.value("both"), DefaultsValue("ours"));

    heard.clear();
    ReplacementCounter writes(file);
    edit(R"({"ours": false, "both": "ours", "unknown": []})");
    loop.runUntilIdle();
    EXPECT_EQ(ours.get<bool>("ours"), false);
    EXPECT_EQ(heard, (std::vector<std::string>{"ours"}));
    settle(ours);
    EXPECT_EQ(writes.take(), 0) << "what came from outside isn't written back";
}

TEST_F(JsonDefaultsStoreTest, AChangeOfOursThatIsNotYetSavedHoldsAgainstAReading) {
    JsonDefaultsStore store(loop, file);
    store.set("a", "ours");
    edit(R"({"a": "theirs", "b": 1})");
    loop.runUntilIdle();
    EXPECT_EQ(store.value("a"), DefaultsValue("ours"));
    EXPECT_EQ(store.value("b"), DefaultsValue(std::int64_t{1}));
    settle(store);
    EXPECT_EQ(onDisk(), json({{"a", "ours"}, {"b", 1}}));
}

TEST_F(JsonDefaultsStoreTest, HearsOfChangesInAFolderThatItMadeItself) {
    const fs::path later = folder.path() / "new" / "settings.json";
    JsonDefaultsStore store(loop, later);
    store.set("a", std::int64_t{1});
    store.saveNow();
    replaceFile(later, R"({"a": 2})"); // right behind our write, before we watch
    loop.runUntilIdle();
    EXPECT_EQ(store.get<std::int64_t>("a"), 2);
    replaceFile(later, R"({"a": 3})");
    loop.runUntilIdle();
    EXPECT_EQ(store.get<std::int64_t>("a"), 3);
}

TEST_F(JsonDefaultsStoreTest, FollowsASymbolicLink) {
    fs::create_directory(folder / "dotfiles");
    const fs::path target = folder.path() / "dotfiles" / "lumnara.json";
    replaceFile(target, R"({"a": 1})");
    fs::create_symlink("dotfiles/lumnara.json", file);
    JsonDefaultsStore store(loop, file);
    EXPECT_EQ(store.get<std::int64_t>("a"), 1);

    replaceFile(target, R"({"a": 2})");
    loop.runUntilIdle();
    EXPECT_EQ(store.get<std::int64_t>("a"), 2);

    store.set("a", std::int64_t{3});
    settle(store);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(json::parse(readFile(target)), json({{"a", 3}}));
}

TEST_F(JsonDefaultsStoreTest, AFileThatBreaksOrGoesMeanwhileLeavesTheSettings) {
    edit(R"({"a": 1, "b": 2})");
    JsonDefaultsStore store(loop, file);
    edit(R"({"a": 3, "b")");
    loop.runUntilIdle();
    edit(R"({"a": 4, "b")");
    loop.runUntilIdle();
    EXPECT_EQ(store.get<std::int64_t>("a"), 1);
    EXPECT_EQ(log.take(),
              (std::vector<std::string>{"Lumnara settings: the file is damaged and was not taken over"}));
    EXPECT_TRUE(movedAside().empty()) << "its writer may still be at it";

    store.set("b", std::int64_t{5});
    settle(store);
    EXPECT_EQ(onDisk(), json({{"a", 1}, {"b", 5}}));
    ASSERT_EQ(movedAside().size(), 1u);
    EXPECT_EQ(readFile(movedAside().front()), R"({"a": 4, "b")");

    fs::remove(file);
    loop.runUntilIdle();
    store.remove("b");
    settle(store);
    EXPECT_EQ(onDisk(), json({{"a", 1}}));
}

TEST_F(JsonDefaultsStoreTest, WhatCouldNotBeSavedIsSavedByItselfOnceTheFileCanBeRead) {
    async::PollLoop real;
    fs::create_directory(file); // for the superuser too
    JsonDefaultsStore store(real, file);
    EXPECT_EQ(store.loadError(), SettingsFileError::notLoaded("Is a directory"));
    store.set("a", true);
    EXPECT_EQ(store.get<bool>("a"), true);
    store.saveNow();
    fs::remove(file);
    replaceFile(file, R"({"b": 2})");
    EXPECT_TRUE(real.runUntil([&] { return onDisk() == json({{"a", true}, {"b", 2}}); }, 10));
    EXPECT_EQ(store.get<std::int64_t>("b"), 2);
}

} // namespace
} // namespace lumnara
