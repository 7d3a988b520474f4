#include "core/notes/NotesStore.h"

#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "core/notes/NoteMetaCodec.h"
#include "tests/notes/RichTexts.h"
#include "tests/support/FileCalls.h"
#include "tests/support/InterruptedChild.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

struct NotesOnDisk {
    testing::TemporaryFolder folder;
    async::TestLoop loop;
    fs::path directory = NotesStore::defaultDirectory(folder / "Lumnara");
    NotesStore store{loop, directory};

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(directory)) found.push_back(entry.path().filename());
        std::sort(found.begin(), found.end());
        return found;
    }
    static mode_t modeOf(const fs::path& path) {
        struct stat status{};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 07777;
    }
};

RichText withPicture(const std::string& words, const std::string& bytes) {
    RichText text = RichText::plain(words);
    const std::string name = text.addAttachment("pic ture.png", bytes);
    text.paragraphs.back().append(TextAttachment{name, 10, 20}, {.bold = true});
    return text;
}

std::vector<std::string> sorted(std::vector<std::string> keys) {
    std::sort(keys.begin(), keys.end());
    return keys;
}

TEST(NotesStore, KeepsTextsByKey) {
    NotesOnDisk notes;
    EXPECT_TRUE(notes.store.allKeys().empty());
    EXPECT_EQ(notes.store.loadText("a"), RichText());
    EXPECT_FALSE(notes.store.hasNote("a"));

    const std::vector<std::string> keys = {"primary:37D8/x y", "link:..", "", "é日٣½", "100%",
                                           ".hidden",          "\xFF\x01"};
    for (const std::string& key : keys) notes.store.saveText(key, RichText::plain(key == "" ? "none" : key));
    EXPECT_EQ(sorted(notes.store.allKeys()), sorted(keys));
    for (const std::string& key : keys) EXPECT_TRUE(notes.store.hasNote(key)) << key;
    EXPECT_EQ(notes.store.loadText("link:..").plainText(), "link:..");
    EXPECT_TRUE(fs::is_directory(notes.directory / "primary%3A37D8%2Fx%20y.rtfd"));
    EXPECT_TRUE(fs::is_directory(notes.directory / "é日٣½.rtfd"));

    notes.store.deleteNote("100%");
    notes.store.deleteNote("100%");
    EXPECT_FALSE(notes.store.hasNote("100%"));
    EXPECT_EQ(notes.store.allKeys().size(), keys.size() - 1);
    EXPECT_EQ(notes.names().size(), keys.size() - 1);
}

TEST(NotesStore, ReplacesTextAndAttachmentsAndKeepsThemPrivate) {
    NotesOnDisk notes;
    RichText text = withPicture("one\ntwo ", "first");
    text.addAttachment("unused.png", "not shown");
    notes.store.saveText("k", text);
    text.attachments.erase("unused.png");
    EXPECT_EQ(notes.store.loadText("k"), text);
    EXPECT_EQ(readFile(notes.directory / "k.rtfd" / "pic ture.png"), "first");
    EXPECT_EQ(notes.modeOf(notes.directory), 0700u);
    EXPECT_EQ(notes.modeOf(notes.directory / "k.rtfd"), 0700u);
    EXPECT_EQ(notes.modeOf(notes.directory / "k.rtfd" / "TXT.rtf"), 0600u);

    // A picture whose bytes are not at hand stays; one that is no longer shown goes.
    text.attachments.clear();
    notes.store.saveText("k", text);
    EXPECT_EQ(notes.store.loadText("k").attachments.at("pic ture.png"), "first");
    notes.store.saveText("k", RichText::plain("three"));
    EXPECT_EQ(notes.store.loadText("k"), RichText::plain("three"));
    EXPECT_EQ(std::distance(fs::directory_iterator(notes.directory / "k.rtfd"), fs::directory_iterator()), 1);
    EXPECT_EQ(notes.names(), std::vector<std::string>{"k.rtfd"});
}

TEST(NotesStore, ListsBodiesOnly) {
    NotesOnDisk notes;
    notes.store.saveMeta("panel only", {});
    for (const char* name : {"readme.txt", "bad%zz.rtfd", "bad%4.rtfd", "a.rtf"})
        replaceFile(notes.directory / name, "x");
    notes.store.saveText("real", {});
    EXPECT_EQ(notes.store.allKeys(), std::vector<std::string>{"real"});
    EXPECT_FALSE(notes.store.hasNote("panel only"));
}

TEST(NotesStore, KeepsThePanelsState) {
    NotesOnDisk notes;
    NoteMeta meta{Rect{-10.5, 20, 320, 240}, true, NoteEdge::left, 0.25, true, {}};
    notes.loop.advance(60);
    notes.store.saveMeta("k:1", meta);
    EXPECT_EQ(readFile(notes.directory / "k%3A1.json"), R"({
  "edge": "left",
  "edgeOffset": 0.25,
  "frame": [
    [
      -10.5,
      20.0
    ],
    [
      320.0,
      240.0
    ]
  ],
  "isDocked": true,
  "isVisible": true,
  "updatedAt": "2026-01-05T09:01:00Z"
}
)");
    meta.updatedAt = notes.loop.date();
    EXPECT_EQ(notes.store.loadMeta("k:1"), meta);
    EXPECT_EQ(notes.modeOf(notes.directory / "k%3A1.json"), 0600u);

    NoteMeta endless{Rect{0, 0, HUGE_VAL, 1}, false, NoteEdge::right, NAN, true, {}};
    notes.store.saveMeta("k", endless);
    EXPECT_EQ(notes.store.loadMeta("k"),
              (NoteMeta{{}, false, NoteEdge::right, 0.4, true, notes.loop.date()}));
}

TEST(NotesStore, WhatAPanelsStateLacksIsTheDefault) {
    NotesOnDisk notes;
    NoteMeta defaults;
    defaults.updatedAt = notes.loop.date();
    EXPECT_EQ(notes.store.loadMeta("missing"), defaults);
    replaceFile(notes.directory / "k.json", R"({"frame": [[1, 2], [3, 4.5]], "later": 1})");
    defaults.frame = Rect{1, 2, 3, 4.5};
    EXPECT_EQ(notes.store.loadMeta("k"), defaults);
}

TEST(NotesStore, ADamagedBodyReadsAsEmptyAndIsNotWrittenOver) {
    NotesOnDisk notes;
    const fs::path text = notes.directory / "k.rtfd" / "TXT.rtf";
    replaceFile(text, "no rich text");
    replaceFile(notes.directory / "k.rtfd" / "p.png", "picture");
    EXPECT_EQ(notes.store.loadText("k"), RichText());
    notes.store.saveText("k", RichText::plain("new"));
    EXPECT_EQ(notes.store.loadText("k"), RichText::plain("new"));
    EXPECT_EQ(notes.names(), (std::vector<std::string>{"k.rtfd", "k.rtfd.corrupt-2026-01-05T09-00-00Z"}));
    EXPECT_EQ(readFile(notes.directory / "k.rtfd.corrupt-2026-01-05T09-00-00Z" / "p.png"), "picture");
    EXPECT_EQ(notes.store.allKeys(), std::vector<std::string>{"k"});

    // A body that is a single file, and attachments that lead elsewhere.
    replaceFile(notes.directory / "file.rtfd", "{\\rtf1 alone}");
    EXPECT_EQ(notes.store.loadText("file"), RichText::plain("alone"));
    notes.store.saveText("file", RichText::plain("folder"));
    EXPECT_EQ(notes.store.loadText("file"), RichText::plain("folder"));
    replaceFile(text, "{\\rtf1 {{\\NeXTGraphic secret}\\'ac}}");
    fs::create_symlink("../k.rtfd/TXT.rtf", notes.directory / "k.rtfd" / "secret");
    EXPECT_TRUE(notes.store.loadText("k").attachments.empty());
}

TEST(NotesStore, ABodyThatTheDiskDidNotGiveIsNotWrittenOver) {
    NotesOnDisk notes;
    const RichText old = withPicture("old ", "old bytes");
    const RichText typed = RichText::plain("typed into what seemed empty");
    notes.store.saveText("k", old);
    const auto names = notes.names();
    using testing::CallFault;
    using testing::CallKind;
    testing::FileCalls calls(notes.folder.path());
    calls.run([&] {
        calls.arm(CallFault{CallKind::open, 0, EIO});
        EXPECT_EQ(notes.store.loadText("k"), RichText());
        calls.arm(CallFault{CallKind::write, 0, ENOSPC});
        EXPECT_THROW(notes.store.saveText("k", typed), NotesError);
        EXPECT_EQ(notes.names(), names) << "it has its name again";
        calls.disarm();
        notes.store.saveText("k", typed);
        EXPECT_EQ(notes.store.loadText("k"), typed);
        EXPECT_EQ(readFile(notes.directory / "k.rtfd.corrupt-2026-01-05T09-00-00Z" / "pic ture.png"),
                  "old bytes");
        notes.store.saveText("k", old);
        EXPECT_EQ(notes.names().size(), 2U);

        // A reading that works clears the doubt.
        calls.arm(CallFault{CallKind::read, 0, EIO});
        EXPECT_EQ(notes.store.loadText("k"), RichText());
        EXPECT_EQ(notes.store.loadText("k"), old);
        notes.store.saveText("k", typed);
        EXPECT_EQ(notes.names().size(), 2U);
    });
}

TEST(NotesStore, AFailureSaysWhatWasNotDoneAndLeavesTheOldNote) {
    NotesOnDisk notes;
    const RichText old = withPicture("old ", "old bytes");
    notes.store.saveText("k", old);
    notes.store.saveMeta("k", {});
    const auto names = notes.names();
    using Case = NotesError::Case;
    using testing::CallKind;
    const auto save = [&] { notes.store.saveText("k", withPicture("new ", "new bytes")); };
    const auto saveMeta = [&] { notes.store.saveMeta("k", {.isVisible = true}); };
    const auto remove = [&] { notes.store.deleteNote("k"); };
    const std::tuple<CallKind, Case, std::function<void()>> failures[] = {
        {CallKind::makeFolder, Case::bodyNotSaved, save}, {CallKind::write, Case::bodyNotSaved, save},
        {CallKind::sync, Case::bodyNotSaved, save},       {CallKind::rename, Case::bodyNotSaved, save},
        {CallKind::sync, Case::metaNotSaved, saveMeta},   {CallKind::rename, Case::metaNotSaved, saveMeta},
        {CallKind::makeFolder, Case::notDeleted, remove}, {CallKind::rename, Case::notDeleted, remove},
    };
    const auto caseOf = [](const std::function<void()>& work) -> std::optional<Case> {
        try {
            work();
        } catch (const NotesError& error) {
            return error.which();
        }
        return std::nullopt;
    };
    testing::FileCalls calls(notes.folder.path());
    calls.run([&] {
        for (const auto& [call, which, work] : failures) {
            calls.arm(testing::CallFault{call, 0, EBUSY, true});
            EXPECT_EQ(caseOf(work), which) << nameOf(call);
            calls.disarm();
            EXPECT_EQ(notes.store.loadText("k"), old) << nameOf(call);
            EXPECT_FALSE(notes.store.loadMeta("k").isVisible);
            EXPECT_EQ(notes.names(), names) << nameOf(call);
        }
    });
    replaceFile(notes.folder / "file", "");
    const NotesStore misplaced(notes.loop, notes.folder.path() / "file" / "Notes");
    EXPECT_EQ(caseOf([&] { misplaced.saveText("k", {}); }), Case::folderNotMade);
}

/// Saves over a note again and again, killed one system call later each time.
void crashAtEveryStep(const std::function<void()>& prepareChild) {
    NotesOnDisk notes;
    const RichText old = withPicture("old ", "old bytes");
    const RichText replacement = withPicture("new ", "new bytes");
    bool sawOld = false;
    int steps = 0;
    for (bool ended = false; !ended; ++steps) {
        notes.store.saveText("k", old);
        ended = testing::endsBeforeSystemCall(steps, [&] {
            prepareChild();
            notes.store.saveText("k", replacement);
        });
        const NotesStore restarted(notes.loop, notes.directory);
        const RichText found = restarted.loadText("k");
        ASSERT_TRUE(found == old || found == replacement) << "step " << steps << ": " << found.plainText();
        ASSERT_EQ(notes.names(), std::vector<std::string>{"k.rtfd"}) << "step " << steps;
        sawOld = sawOld || found == old;
        ASSERT_TRUE(!ended || found == replacement);
    }
    EXPECT_TRUE(sawOld);
    EXPECT_GT(steps, 20);
}

TEST(NotesStore, ACrashLeavesTheOldOrTheNewNote) {
    crashAtEveryStep([] {});
}

TEST(NotesStore, ACrashLeavesTheOldOrTheNewNoteWhereNamesCannotBeExchanged) {
    crashAtEveryStep([] { testing::failSystemCall(SYS_renameat2, EINVAL); });
}

} // namespace
} // namespace lumnara
