#include "core/notes/NotesStore.h"

#include "core/base/Files.h"
#include "core/base/KeptFile.h"
#include "core/notes/NoteFileName.h"
#include "core/notes/NoteMetaCodec.h"
#include "core/notes/RichTextPackage.h"

#include <system_error>
#include <utility>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

/// Does what may fail with the file system's error, and says it as a note's.
template <class Work> void orNotesError(NotesError::Case which, Work&& work) {
    try {
        work();
    } catch (const std::system_error& error) {
        throw NotesError::of(which, error.code().message());
    }
}

} // namespace

NotesStore::NotesStore(async::Loop& loop, fs::path directory)
    : loop_(loop),
      directory_(std::move(directory)) {
    finishReplacements(directory_);
}

fs::path NotesStore::defaultDirectory(const fs::path& dataFolder) { return dataFolder / "Notes"; }

void NotesStore::ensureDirectory() const {
    orNotesError(NotesError::Case::folderNotMade, [&] { makeFolder(directory_); });
}

bool NotesStore::hasNote(std::string_view key) const {
    std::error_code ignored;
    return fs::exists(bodyPath(key), ignored);
}

std::vector<std::string> NotesStore::allKeys() const {
    std::vector<std::string> keys;
    std::error_code error;
    for (fs::directory_iterator entry(directory_, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        if (!name.ends_with(NoteFileName::bodySuffix)) continue;
        const std::string_view encoded =
            std::string_view(name).substr(0, name.size() - NoteFileName::bodySuffix.size());
        if (auto key = NoteFileName::decode(encoded)) keys.push_back(*std::move(key));
    }
    return error ? std::vector<std::string>() : keys;
}

RichText NotesStore::loadText(std::string_view key) const {
    try {
        auto text = RichTextPackage::read(bodyPath(key));
        noteUnread(key, false);
        return std::move(text).value_or(RichText());
    } catch (const std::system_error&) {
        noteUnread(key, true);
        return {};
    }
}

void NotesStore::saveText(std::string_view key, const RichText& text) const {
    ensureDirectory();
    orNotesError(NotesError::Case::bodyNotSaved, [&] {
        const fs::path body = bodyPath(key);
        const bool isKept =
            fs::exists(fs::symlink_status(body)) && (!RichTextPackage::isReadable(body) || isUnread(key));
        const fs::path aside = isKept ? moveAside(body, loop_.date()) : fs::path();
        try {
            RichTextPackage::write(body, text);
        } catch (const std::system_error&) {
            std::error_code ignored; // then it stays aside
            if (isKept) fs::rename(aside, body, ignored);
            throw;
        }
        noteUnread(key, false);
    });
}

NoteMeta NotesStore::loadMeta(std::string_view key) const {
    NoteMeta meta{.updatedAt = loop_.date()};
    KeptFile(metaPath(key)).read([&](const std::string& text) {
        meta = NoteMetaCodec::decode(text, loop_.date());
    });
    return meta;
}

void NotesStore::saveMeta(std::string_view key, NoteMeta meta) const {
    meta.updatedAt = loop_.date();
    ensureDirectory();
    orNotesError(NotesError::Case::metaNotSaved,
                 [&] { KeptFile(metaPath(key)).replace(NoteMetaCodec::encode(meta)); });
}

void NotesStore::deleteNote(std::string_view key) const {
    orNotesError(NotesError::Case::notDeleted, [&] {
        removeWhole(bodyPath(key));
        removeWhole(metaPath(key));
    });
}

fs::path NotesStore::bodyPath(std::string_view key) const {
    return directory_ / (NoteFileName::encode(key) + std::string(NoteFileName::bodySuffix));
}

fs::path NotesStore::metaPath(std::string_view key) const {
    return directory_ / (NoteFileName::encode(key) + std::string(NoteFileName::metaSuffix));
}

void NotesStore::noteUnread(std::string_view key, bool isUnread) const {
    const std::lock_guard guard(lock_);
    if (isUnread)
        unread_.emplace(key);
    else if (const auto found = unread_.find(key); found != unread_.end())
        unread_.erase(found);
}

bool NotesStore::isUnread(std::string_view key) const {
    const std::lock_guard guard(lock_);
    return unread_.contains(key);
}

} // namespace lumnara
