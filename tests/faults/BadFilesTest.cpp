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
#include <map>

namespace lumnara::testing {
namespace {

namespace fs = std::filesystem;

/// What its owner does with a file of JSON that is not as it should be.
struct KeptKind {
    const char* store;
    const char* name;
    /// Damage is moved aside; otherwise it is left to be replaced, since nothing is lost with it.
    bool isMovedAside;
    /// One that can neither be read nor moved is not saved in this run: the change is refused aloud, or only
    /// the start tells.
    enum class Refusal { aloud, silent, none } refusal;
    /// Saving begins again in this run, as soon as damage can be moved, or as the file can be read.
    bool triesToMove, triesToRead;
    /// Lines with a part of the file in its state 1, and what may stand there in a damaged one; ' for ".
    const char* damages;
};
using enum KeptKind::Refusal;

const KeptKind keptKinds[] = {
    {"names", "desktops.json", true, aloud, true, false, R"(
'schemaVersion': 2 -> 'schemaVersion': 3
'name': '1' -> 'name': 7
'updatedAt' -> 'at')"},
    {"automations", "automations.json", true, aloud, false, false, R"(
'schemaVersion': 1 -> 'schemaVersion': '2' ; 'schemaVersion': 2.5 ; 'schemaVersion': true ; 'more': 1
'schemaVersion' -> 'schemaVersion': 1, 'schemaVersion'
'automations' -> 'automation'
'onEnter' -> 'onWake'
'isEnabled': true -> 'isEnabled': 1
[] -> [{'dance': {'name': 'x'}}] ; [{}] ; ['wait'] ; [{'wait': {'seconds': 1}, 'dance': {}}]
[] -> [{'wait': {'seconds': 1}, 'openPath': {'path': '/'}}] ; [{'wait': {'seconds': '1'}}]
[] -> [{'wait': {'seconds': true}}] ; [{'wait': {'seconds': 1e999}}] ; [{'wait': {}}]
[] -> [{'pomodoro': {'minutes': 2.9, 'breakMinutes': 5}}] ; [{'session': {'op': 'restart'}}]
[] -> [{'pomodoro': {'minutes': 4294967298, 'breakMinutes': 5}}] ; [{'openApp': {'bundleID': null}}]
[] -> [{'openApp': {'bundleID': 'a', 'name': 1}}])"},
    {"settings", "settings.json", true, aloud, true, true, R"(
'slot1': 1 -> 'slot1': 1, 'slot1': 2 ; 'slot1': tr)"},
    {"workspaces", "workspaces.json", true, silent, false, false, R"(
'schemaVersion': 1 -> 'schemaVersion': 2 ; 'schemaVersion': 1.5
'desktops' -> 'desktop'
'kept': false -> 'kept': 0
'asked': [] -> 'asked': [1]
'display': 'L' -> 'display': null
'lastSeen': -> 'lastSeen': -1
'workspace': '1' -> 'workspace': '')"},
    {"ewmh", "ewmh-desktops.json", true, silent, false, false, R"(
'uuid': 'slot1' -> 'uuid': 1
'ours' -> 'hours')"},
    {"pomodoro", "pomodoro.json", false, none, true, true, R"(
'due': '2 -> 'due': 'tomorrow ; 'over': '2
'breakMinutes': 1 -> 'breakMinutes': 1.5 ; 'breakMinutes': '1')"},
    {"panel", "Panels/k.json", false, none, true, true, R"(
'right' -> 'top'
'isVisible': false -> 'isVisible': 0 ; 'isVisible': false, 'isVisible': false
'edgeOffset': -> 'frame': [[1, 2], [3]], 'x': ; 'frame': [1, 2, 3, 4], 'x': ; 'edgeOffset': '0', 'x':
'updatedAt': -> 'updatedAt': 5, 'x':)"},
};

std::vector<std::string> split(const std::string& text, const std::string& mark) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(mark, at), text.size());
        parts.push_back(text.substr(at, end - at));
        at = end + mark.size();
    }
    return parts;
}

/// `whole` with each of the damages in turn.
std::vector<std::string> damagesOf(const std::string& whole, std::string damages) {
    std::vector<std::string> texts;
    std::ranges::replace(damages, '\'', '"');
    for (const std::string& line : split(damages.substr(1), "\n")) {
        const auto sides = split(line, " -> ");
        for (const std::string& damage : split(sides.at(1), " ; "))
            texts.push_back(std::string(whole).replace(whole.find(sides[0]), sides[0].size(), damage));
    }
    return texts;
}

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
    bool isRefused(Subject& subject, int k) {
        try {
            subject.change(k);
            subject.save();
        } catch (const std::exception&) {
            return true;
        }
        return !log.take().empty();
    }
    bool refusesChange(const SubjectKind& kind, int k) {
        try {
            const auto subject = kind.open(loop, data);
            log.take();
            return isRefused(*subject, k);
        } catch (const std::exception&) {
            return true;
        }
    }
    /// By their names.
    std::map<std::string, std::string> movedAside() const {
        std::map<std::string, std::string> contents;
        for (const auto& entry : fs::recursive_directory_iterator(data))
            if (const std::string name = entry.path().filename(); name.find(".corrupt-") != std::string::npos)
                contents[name] = readFile(entry.path());
        return contents;
    }
    /// The file of a state of its store.
    std::string wholeFile(const KeptKind& file, int state) {
        startAnew();
        EXPECT_EQ(toldByStart(kindOf(file.store)), "") << "there is no file yet";
        fill(kindOf(file.store), state);
        return readFile(data / file.name);
    }
    /// The store tells of a file of this text, keeps it and goes on: the `number`-th of this second.
    void expectDamage(const KeptKind& file, const std::string& text, int number) {
        SCOPED_TRACE(fmt::format("{} {}", file.name, text.substr(0, 500)));
        const SubjectKind& kind = kindOf(file.store);
        put(data / file.name, text);
        const auto subject = kind.open(loop, data);
        EXPECT_NE(!subject->trouble().empty() || !log.take().empty(),
                  file.store == std::string_view("panel"));
        EXPECT_EQ(fs::exists(data / file.name), !file.isMovedAside);
        if (file.isMovedAside) {
            const std::string aside = file.name + std::string(".corrupt-2026-01-05T09-00-00Z");
            EXPECT_EQ(movedAside()[aside + (number > 1 ? fmt::format("-{}", number) : "")], text);
            EXPECT_EQ(movedAside().size(), static_cast<std::size_t>(number));
        } else {
            EXPECT_TRUE(movedAside().empty());
            EXPECT_THROW(kind.found(loop, data), Damage);
            log.take();
        }
        if (number == 1 && text.size() % 64 != 0) return; // the disk takes its time
        EXPECT_FALSE(isRefused(*subject, 1));
        EXPECT_EQ(kind.found(loop, data), 1);
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
    for (const KeptKind& file : keptKinds) {
        const std::string whole = wholeFile(file, state);
        for (std::size_t length = 0; length + 1 < whole.size(); ++length) {
            startAnew();
            fs::create_directories((data / file.name).parent_path());
            expectDamage(file, whole.substr(0, length), 1);
            if (HasFailure()) return;
        }
        put(data / file.name,
            whole.substr(0, whole.size() - 1)); // without its last line end it is still whole
        EXPECT_EQ(kindOf(file.store).found(loop, data), state);
    }
}

TEST_F(BadFilesTest, AFileOfAnotherFormIsKeptAndTheStoreGoesOn) {
    for (const KeptKind& file : keptKinds) {
        const std::string whole = wholeFile(file, 1);
        int number = 0;
        for (const char* text : {"", "no JSON", "[]", "null", "7", "{\"\xFF\": 1}", "{\"\\uD83D\": 1}"})
            expectDamage(file, text, ++number);
        expectDamage(file, whole + "}", ++number);
        expectDamage(file, std::string(50'000, '['), ++number);
        for (const std::string& text : damagesOf(whole, file.damages)) expectDamage(file, text, ++number);
    }
}

TEST_F(BadFilesTest, DamageThatCannotBeMovedIsToldAndNotWrittenOver) {
    for (const KeptKind& file : keptKinds) {
        if (!file.isMovedAside) continue;
        SCOPED_TRACE(file.name);
        const SubjectKind& kind = kindOf(file.store);
        const std::string damage = "{";
        startAnew();
        put(data / file.name, damage);
        FileCalls calls(data);
        calls.run([&] {
            calls.arm(CallFault{CallKind::rename, 0, ENOSPC, true});
            EXPECT_FALSE(toldByStart(kind).empty());
            const auto subject = kind.open(loop, data);
            log.take();
            // Also where only the moving fails, nothing may take the file's place.
            for (const bool lasts : {true, false}) {
                calls.arm(CallFault{CallKind::rename, 0, ENOSPC, lasts});
                EXPECT_EQ(isRefused(*subject, 1), file.refusal == aloud);
                EXPECT_EQ(readFile(data / file.name), damage);
            }
            calls.disarm();
            isRefused(*subject, 1);
            EXPECT_EQ(movedAside().size(), file.triesToMove ? 1u : 0u);
            EXPECT_EQ(readFile(data / file.name) == damage, !file.triesToMove);
        });
        EXPECT_FALSE(refusesChange(kind, 1));
        ASSERT_EQ(movedAside().size(), 1u);
        EXPECT_EQ(movedAside().begin()->second, damage);
    }
}

/// Three ways in which a file can't be read.
enum class Obstacle { folderInPlace, linkInCircles, noPermission };

TEST_F(BadFilesTest, AFileThatCannotBeReadIsToldAndLeftAlone) {
    std::vector<KeptKind> files(std::begin(keptKinds), std::end(keptKinds));
    files.push_back({"tracking", TrackingStore::fileName, false, aloud, false, false, ""});
    for (const KeptKind& file : files)
        for (const Obstacle obstacle :
             {Obstacle::folderInPlace, Obstacle::linkInCircles, Obstacle::noPermission}) {
            SCOPED_TRACE(fmt::format("{} {}", file.name, static_cast<int>(obstacle)));
            const SubjectKind& kind = kindOf(file.store);
            const fs::path path = data / file.name;
            // The state of a reminder or of a panel may be replaced by another one.
            const bool isLeftAlone = file.refusal != none;
            const std::string before = wholeFile(file, 2);
            if (obstacle != Obstacle::noPermission) fs::rename(path, data / "kept");
            if (obstacle == Obstacle::folderInPlace) fs::create_directory(path);
            if (obstacle == Obstacle::linkInCircles) fs::create_symlink(path.filename(), path);
            FileCalls calls(path); // the superuser may read what he likes
            calls.run([&] {
                if (obstacle == Obstacle::noPermission) calls.arm(CallFault{CallKind::open, 0, EACCES, true});
                EXPECT_EQ(toldByStart(kind).empty(), file.store == std::string_view("panel"));
                if (isLeftAlone) {
                    EXPECT_EQ(refusesChange(kind, 3), file.refusal == aloud);
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
                if (isLeftAlone) {
                    EXPECT_EQ(readFile(path), before);
                }
                EXPECT_FALSE(refusesChange(kind, 3));
                EXPECT_EQ(kind.found(loop, data), 3);
            });
        }
}

TEST_F(BadFilesTest, AFileThatCouldNotBeReadIsSavedAgainWhenItsOwnerReadsItAnew) {
    for (const KeptKind& file : keptKinds) {
        if (file.refusal == none) continue;
        SCOPED_TRACE(file.name);
        wholeFile(file, 2);
        fs::rename(data / file.name, data / "kept");
        fs::create_directory(data / file.name);
        const auto subject = kindOf(file.store).open(loop, data);
        isRefused(*subject, 3);
        fs::remove(data / file.name);
        fs::rename(data / "kept", data / file.name);
        isRefused(*subject, 3);
        EXPECT_EQ(kindOf(file.store).found(loop, data), file.triesToRead ? 3 : 2);
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
