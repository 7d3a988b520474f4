#include "core/async/TestLoop.h"
#include "core/automation/AutomationStore.h"
#include "core/base/Files.h"
#include "core/names/NameStore.h"
#include "core/notes/NotesStore.h"
#include "core/tracking/Database.h"
#include "core/tracking/TrackingStore.h"
#include "tests/faults/Subjects.h"
#include "tests/support/FileCalls.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

namespace fs = std::filesystem;

/// What a store does with a file that is damaged: moves it aside, or leaves it to be replaced by the next
/// change, since nothing is lost with it.
struct JsonFile {
    const char* store;
    const char* name;
    bool isMovedAside;
};
constexpr JsonFile jsonFiles[] = {
    {"names", "desktops.json", true},
    {"automations", "automations.json", true},
    {"settings", "settings.json", true},
    {"pomodoro", "pomodoro.json", false},
};

const SubjectKind& kindOf(std::string_view name) {
    return *std::ranges::find(subjectKinds(), name, &SubjectKind::name);
}

class BadFilesTest : public ::testing::Test {
protected:
    BadFilesTest() { fs::create_directory(data); }

    static void put(const fs::path& path, const std::string& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    void fill(const SubjectKind& kind, int state) {
        const auto subject = kind.open(loop, data);
        for (int k = 1; k <= state; ++k) subject->change(k);
        subject->save();
        log.take();
    }
    /// What the store says when it is opened: its own sentence, a log line or an exception's.
    std::string toldByStart(const SubjectKind& kind) {
        std::string told;
        try {
            told = kind.open(loop, data)->trouble();
        } catch (const std::exception& error) {
            told = error.what();
        }
        for (const std::string& line : log.take()) told += line;
        return told;
    }
    /// Changes and saves; whether the store says that it doesn't.
    bool refusesChange(const SubjectKind& kind, int k) {
        try {
            const auto subject = kind.open(loop, data);
            log.take();
            subject->change(k);
            subject->save();
        } catch (const std::exception&) {
            return true;
        }
        return !log.take().empty();
    }
    std::vector<std::string> movedAside() const {
        std::vector<std::string> contents;
        for (const auto& entry : fs::directory_iterator(data))
            if (entry.path().filename().string().find(".corrupt-") != std::string::npos)
                contents.push_back(readFile(entry.path()));
        return contents;
    }
    void startAnew() {
        fs::remove_all(data);
        fs::create_directory(data);
    }

    TemporaryFolder folder;
    const fs::path data = folder / "Lumnara";
    async::TestLoop loop;
    LogLines log;
};

TEST_F(BadFilesTest, AFileCutAtAnyByteIsKeptAndTheStoreGoesOn) {
    constexpr int state = 3;
    for (const JsonFile& file : jsonFiles) {
        const SubjectKind& kind = kindOf(file.store);
        startAnew();
        fill(kind, state);
        const std::string whole = readFile(data / file.name);
        for (std::size_t length = 0; length <= whole.size(); ++length) {
            SCOPED_TRACE(fmt::format("{} cut at {} of {}", file.name, length, whole.size()));
            startAnew();
            const std::string text = whole.substr(0, length);
            put(data / file.name, text);
            const std::string told = toldByStart(kind);
            if (whole.size() - length <= 1) { // without its last line end it is still whole
                ASSERT_EQ(kind.found(loop, data), state);
                ASSERT_TRUE(movedAside().empty());
                continue;
            }
            ASSERT_EQ(movedAside(), file.isMovedAside ? std::vector{text} : std::vector<std::string>());
            ASSERT_EQ(fs::exists(data / file.name), !file.isMovedAside);
            // The names and the automations tell by the place of the file that they kept.
            ASSERT_TRUE(!told.empty() || file.isMovedAside);
            if (length % 16 == 0) {
                ASSERT_FALSE(refusesChange(kind, 1));
                ASSERT_EQ(kind.found(loop, data), 1);
            }
        }
    }
}

TEST_F(BadFilesTest, APanelStateCutAtAnyByteIsTheDefaultAndIsReplaced) {
    const NotesStore store(loop, data);
    store.saveMeta("k", {.isDocked = true, .edgeOffset = 0.25, .isVisible = true});
    const std::string whole = readFile(data / "k.json");
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
        put(data / "k.json", whole.substr(0, length));
        ASSERT_EQ(store.loadMeta("k"), (NoteMeta{.updatedAt = loop.date()})) << length;
    }
    store.saveMeta("k", {.isVisible = true});
    EXPECT_TRUE(store.loadMeta("k").isVisible);
}

TEST_F(BadFilesTest, ANewerFileIsKeptAndTold) {
    const std::string newer = R"({"schemaVersion": 9, "automations": [], "desktops": {}})";
    replaceFile(data / "desktops.json", newer);
    const NameStore names(loop, data / "desktops.json");
    ASSERT_TRUE(names.recoveredFromCorruptFile());
    EXPECT_EQ(readFile(*names.recoveredFromCorruptFile()), newer);

    replaceFile(data / "automations.json", newer);
    EXPECT_EQ(toldByStart(kindOf("automations")), AutomationStoreError::unsupportedSchema(9).sentence());
    EXPECT_TRUE(refusesChange(kindOf("automations"), 1));
    EXPECT_EQ(readFile(data / "automations.json"), newer);

    // What a later version adds to the settings stays.
    replaceFile(data / "settings.json", R"({"later": {"deep": [1]}})");
    EXPECT_FALSE(refusesChange(kindOf("settings"), 1));
    EXPECT_NE(readFile(data / "settings.json").find("deep"), std::string::npos);
}

/// Three ways in which a file can't be read.
enum class Obstacle { folderInPlace, linkInCircles, noPermission };

TEST_F(BadFilesTest, AFileThatCannotBeReadIsToldAndLeftAlone) {
    constexpr std::array files = {
        JsonFile{"names", "desktops.json", false}, JsonFile{"automations", "automations.json", false},
        JsonFile{"settings", "settings.json", false}, JsonFile{"pomodoro", "pomodoro.json", false},
        JsonFile{"tracking", TrackingStore::fileName, false}};
    for (const JsonFile& file : files)
        for (const Obstacle obstacle :
             {Obstacle::folderInPlace, Obstacle::linkInCircles, Obstacle::noPermission}) {
            SCOPED_TRACE(fmt::format("{} {}", file.name, static_cast<int>(obstacle)));
            const SubjectKind& kind = kindOf(file.store);
            const fs::path path = data / file.name;
            startAnew();
            fill(kind, 2);
            const std::string before = readFile(path);
            if (obstacle != Obstacle::noPermission) fs::rename(path, data / "kept");
            if (obstacle == Obstacle::folderInPlace) fs::create_directory(path);
            if (obstacle == Obstacle::linkInCircles) fs::create_symlink(file.name, path);
            FileCalls calls(path); // the superuser may read what he likes
            calls.run([&] {
                if (obstacle == Obstacle::noPermission) calls.arm(CallFault{CallKind::open, 0, EACCES, true});
                EXPECT_FALSE(toldByStart(kind).empty());
                // A pomodoro is no more than a reminder: another one may take the place of a file.
                if (file.store != std::string_view("pomodoro")) {
                    EXPECT_TRUE(refusesChange(kind, 3));
                }
                calls.disarm();
                EXPECT_TRUE(movedAside().empty());
                const fs::file_type expected[] = {fs::file_type::directory, fs::file_type::symlink,
                                                  fs::file_type::regular};
                EXPECT_EQ(fs::symlink_status(path).type(), expected[static_cast<std::size_t>(obstacle)]);
                if (obstacle != Obstacle::noPermission) {
                    fs::remove(path);
                    fs::rename(data / "kept", path);
                }
                if (file.store != std::string_view("pomodoro")) {
                    EXPECT_EQ(readFile(path), before);
                }
                EXPECT_FALSE(refusesChange(kind, 3));
                EXPECT_EQ(kind.found(loop, data), 3);
            });
        }
}

TEST_F(BadFilesTest, ANoteThatCannotBeReadIsToldAndLeftAlone) {
    const NotesStore store(loop, data);
    const RichText old = RichText::plain("old"), typed = RichText::plain("typed");
    store.saveText("k", old);
    const auto refuses = [&] {
        EXPECT_EQ(store.loadText("k"), RichText());
        try {
            store.saveText("k", typed);
        } catch (const NotesError& error) {
            return error.which() == NotesError::Case::bodyNotSaved && error.sentence().ends_with('.');
        }
        return false;
    };
    FileCalls calls(data / "k.rtfd" / "TXT.rtf");
    calls.run([&] {
        calls.arm(CallFault{CallKind::open, 0, EACCES, true});
        EXPECT_TRUE(refuses());
    });
    EXPECT_EQ(store.loadText("k"), old);

    fs::rename(data / "k.rtfd", data / "kept");
    fs::create_symlink("k.rtfd", data / "k.rtfd");
    EXPECT_TRUE(refuses());
    fs::remove(data / "k.rtfd");
    fs::rename(data / "kept", data / "k.rtfd");
    EXPECT_EQ(store.loadText("k"), old);
    EXPECT_TRUE(movedAside().empty());
}

TEST_F(BadFilesTest, ADatabaseCutAnywhereIsToldAndLeftAsItIs) {
    const fs::path file = data / TrackingStore::fileName;
    const SubjectKind& kind = kindOf("tracking");
    fill(kind, 5);
    const std::string whole = readFile(file);
    const auto rows = TrackingStore(loop, file).intervals({0}, loop.date());
    constexpr std::size_t step = 1023;
    // SQLite takes one byte for none.
    for (std::size_t length = 2; length < whole.size(); length += step) {
        SCOPED_TRACE(fmt::format("cut at {} of {}", length, whole.size()));
        const std::string text = whole.substr(0, length);
        put(file, text);
        try {
            // Inside its last page a cut may leave all that is read.
            EXPECT_EQ(TrackingStore(loop, file).intervals({0}, loop.date()), rows);
        } catch (const DatabaseError& error) {
            EXPECT_TRUE(error.which() == DatabaseError::Case::damaged ||
                        error.which() == DatabaseError::Case::notADatabase)
                << error.sentence();
        }
        EXPECT_TRUE(readFile(file) == text);
    }
    put(file, whole);
    EXPECT_EQ(kind.found(loop, data), 5);
}

TEST_F(BadFilesTest, ADatabaseThatIsHeldOrHasNoRoomLosesNothing) {
    const SubjectKind& kind = kindOf("tracking");
    fill(kind, 2);
    const auto caseOf = [](const std::function<void()>& work) {
        try {
            work();
        } catch (const DatabaseError& error) {
            return std::optional(error.which());
        }
        return std::optional<DatabaseError::Case>();
    };
    FileCalls calls(data);
    calls.run([&] {
        const auto subject = kind.open(loop, data);
        {
            Database other(data / TrackingStore::fileName);
            const Database::Transaction held(other);
            EXPECT_EQ(caseOf([&] { subject->change(3); }), DatabaseError::Case::locked);
            EXPECT_EQ(caseOf([&] { kind.open(loop, data); }), DatabaseError::Case::locked);
        }
        subject->retry(3);
        EXPECT_EQ(kind.found(loop, data), 3);

        calls.arm(CallFault{CallKind::write, 0, ENOSPC, true});
        EXPECT_EQ(caseOf([&] { subject->change(4); }), DatabaseError::Case::full);
        calls.disarm();
        EXPECT_EQ(kind.found(loop, data), 3);
        subject->retry(4);
        EXPECT_EQ(kind.found(loop, data), 4);
    });
}

} // namespace
} // namespace lumnara::testing
