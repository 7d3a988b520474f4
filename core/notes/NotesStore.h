#pragma once

#include "core/async/Loop.h"
#include "core/notes/NoteMeta.h"
#include "core/notes/NotesError.h"
#include "core/notes/RichText.h"

#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// Keeps one note per desktop key in a folder: the body as a rich text package "<e>.rtfd" and its panel's
/// state as "<e>.json", where e is the key as NoteFileName writes it. It holds no note in memory, and
/// writes at once and wholly or not at all.
///
/// Main thread, but for loadText() and saveText(), which any thread may call as long as nobody else works
/// on the same key. The loop outlives the store.
class NotesStore {
public:
    /// Clears away what a crash left half written in an existing folder; never fails.
    NotesStore(async::Loop& loop, std::filesystem::path directory);

    /// The folder "Notes" among the files that Lumnara keeps in `dataFolder`.
    static std::filesystem::path defaultDirectory(const std::filesystem::path& dataFolder);

    const std::filesystem::path& directory() const { return directory_; }

    /// Creates the folder, and those above it, with mode 0700. Throws NotesError. The saves do it too.
    void ensureDirectory() const;

    /// Whether the key has a body.
    bool hasNote(std::string_view key) const;
    /// The keys that have a body, in the folder's order; none when the folder can't be read.
    std::vector<std::string> allKeys() const;

    /// Empty when there is no body or it can't be read.
    RichText loadText(std::string_view key) const;
    /// Replaces the body. One that is no rich text, or that the disk didn't give at its last loadText(), is
    /// not written over but moved aside, as "<e>.rtfd.corrupt-<stamp>". Throws NotesError, also when the disk
    /// doesn't say what stands there now.
    void saveText(std::string_view key, const RichText& text) const;

    /// The defaults, with `updatedAt` now, when there is no file or it doesn't decode.
    NoteMeta loadMeta(std::string_view key) const;
    /// Writes `meta` with `updatedAt` now. Throws NotesError.
    void saveMeta(std::string_view key, NoteMeta meta) const;

    /// Removes the body and the panel's state, as far as there are any. Throws NotesError.
    void deleteNote(std::string_view key) const;

private:
    std::filesystem::path bodyPath(std::string_view key) const;
    std::filesystem::path metaPath(std::string_view key) const;
    void noteUnread(std::string_view key, bool isUnread) const;
    bool isUnread(std::string_view key) const;

    async::Loop& loop_;
    std::filesystem::path directory_;
    mutable std::mutex lock_;
    /// The keys whose bodies the disk didn't give: who shows them saw nothing, and what is typed there is no
    /// later form of them.
    mutable std::set<std::string, std::less<>> unread_;
};

} // namespace lumnara
