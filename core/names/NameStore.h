#pragma once

#include "core/async/DelayedWork.h"
#include "core/async/Loop.h"
#include "core/base/KeptFile.h"
#include "core/names/LinkPruning.h"
#include "core/names/NameStoreError.h"
#include "core/names/NameStoreFile.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

namespace lumnara {

/// Owns desktops.json: everything the user has said about desktops. A change holds at once in memory and
/// is on disk `debounce` seconds after the last change of a burst.
///
/// The store is healthy; or recovered, when a damaged file was moved aside and the store began empty; or
/// not loaded, when the file couldn't be read: changes then live in memory only and the file stays as it is.
/// A damaged file that can't be moved at once is moved before the first write, which fails without that.
///
/// Any thread may read and change; the store is made, saved with saveNow() and destroyed on the main
/// thread. It is written on a queue of its own, "com.lumnara.namestore". A pending write is dropped with
/// the store: call saveNow() first. The loop outlives it.
class NameStore {
public:
    /// Loads the file at `url`; never fails.
    NameStore(async::Loop& loop, std::filesystem::path url, double debounce = 0.25);
    NameStore(const NameStore&) = delete;
    NameStore& operator=(const NameStore&) = delete;

    const std::filesystem::path& url() const { return kept_.path(); }
    /// Where a damaged file was moved to, if there was one.
    const std::optional<std::filesystem::path>& recoveredFromCorruptFile() const { return recovered_; }
    const std::optional<NameStoreError>& loadError() const { return loadError_; }
    /// Called on the store's queue after each successful write. Set once, before the first change.
    std::function<void()> onSaved;

    /// The contents as they are now; costs a reference. Two calls return the same object exactly when
    /// nothing changed between them.
    std::shared_ptr<const NameStoreFile> file() const;
    std::optional<DesktopRecord> record(std::string_view key) const;

    void setRecord(const std::string& key, DesktopRecord record);
    void removeRecord(std::string_view key);
    // One field of an existing record; nothing happens for a missing key.
    void setName(std::string_view key, std::string name);
    void setAliases(std::string_view key, std::vector<std::string> aliases);
    void setIcon(std::string_view key, std::optional<std::string> icon);
    void setColor(std::string_view key, std::optional<std::string> color);
    void setDimmed(std::string_view key, bool isDimmed);
    void setOrder(std::string_view displayUuid, std::vector<std::string> keys);

    /// Notes where desktops were seen, by key. Only records that are now in another place, or that had
    /// none, change; otherwise nothing is written.
    void updateLastSeen(const NameStoreFile::Map<LastSeen>& places);

    /// Makes a link group, or replaces it.
    void setLink(const std::string& id, DisplayLink::Members members);
    /// Removes a link group with its record, and logs why. Nothing happens when there is no such group.
    void removeLink(const std::string& id, std::string_view reason);
    /// Takes those out of the link groups whose Spaces have been missing for LinkPruning::graceSeconds, and
    /// then the groups of fewer than two. Whether members are missing that may yet come back: then the
    /// groups have to be pruned again.
    bool pruneLinks(const LinkPruning::LiveKeys& liveKeys, Date now);

    using Edit = std::function<void(NameStoreFile&)>;
    /// Several changes as one: `edit` runs on a copy under the lock, which it must not take again, and the
    /// copy then becomes the contents. An exception leaves the contents as they were.
    void change(const Edit& edit);

    /// Writes now and waits for it. Throws loadError(), or the file system's error. Not from onSaved.
    void saveNow();

    /// Waits until the writes that were due have ended. Not from onSaved.
    void flush();

private:
    void load();
    void changeRecord(std::string_view key, const std::function<void(DesktopRecord&)>& edit);
    // With the lock held.
    void changeLocked(const Edit& edit);
    void scheduleSave();

    void startDebounce();
    async::DelayedWork::Work backgroundWrite();
    void write(Date now);

    async::Loop& loop_;
    const std::shared_ptr<async::Inbox> inbox_;
    /// After the start only the queue touches it.
    KeptFile kept_;
    std::optional<std::filesystem::path> recovered_;
    std::optional<NameStoreError> loadError_;

    mutable std::mutex lock_;
    std::shared_ptr<const NameStoreFile> file_;
    /// Never saved: every start gives the members their time anew.
    LinkPruning::MissingSince missingSince_;
    /// The main thread has been asked to start the debounce time anew, and hasn't yet.
    bool saveAsked_ = false;

    /// By which work that waits for the main thread sees that the store is gone.
    const std::shared_ptr<NameStore*> self_;
    /// Last, so that it goes first: its destructor waits for a running write.
    async::DelayedWork saving_;
};

} // namespace lumnara
