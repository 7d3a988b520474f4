#include "core/names/NameStore.h"

#include "core/base/Log.h"
#include "core/names/NameStoreCodec.h"

#include <exception>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

std::shared_ptr<const NameStoreFile> emptyFile(Date now) {
    auto file = std::make_shared<NameStoreFile>();
    file->updatedAt = now;
    return file;
}

} // namespace

NameStore::NameStore(async::Loop& loop, std::filesystem::path url, double debounce)
    : loop_(loop),
      inbox_(loop.inbox()),
      kept_(std::move(url)),
      file_(emptyFile(loop.date())),
      self_(std::make_shared<NameStore*>(this)),
      saving_(loop, "com.lumnara.namestore", debounce, [this] { return backgroundWrite(); }) {
    load();
}

void NameStore::load() {
    const Date now = loop_.date();
    std::string doubled;
    const auto reading = kept_.load(
        [&](const std::string& text) {
            file_ = std::make_shared<const NameStoreFile>(
                NameStoreCodec::decode(text, now, [&](const std::string& key) { doubled = key; }));
        },
        now);
    if (reading.found == KeptFile::Found::contents && !doubled.empty())
        log(fmt::format("Lumnara names: a key stands twice in desktops.json, \"{}\"; the last one counts",
                        doubled));
    // Damage that stays for now is moved before the first write.
    recovered_ = reading.aside;
    if (reading.failure && !recovered_)
        loadError_ = NameStoreError::notLoaded(reading.failure->code().message());
}

std::shared_ptr<const NameStoreFile> NameStore::file() const {
    std::lock_guard guard(lock_);
    return file_;
}

std::optional<DesktopRecord> NameStore::record(std::string_view key) const {
    const auto contents = file();
    const DesktopRecord* found = contents->record(key);
    return found ? std::optional(*found) : std::nullopt;
}

void NameStore::setRecord(const std::string& key, DesktopRecord record) {
    change([&](NameStoreFile& file) { file.desktops.insert_or_assign(key, std::move(record)); });
}

void NameStore::removeRecord(std::string_view key) {
    change([&](NameStoreFile& file) {
        if (const auto found = file.desktops.find(key); found != file.desktops.end())
            file.desktops.erase(found);
    });
}

void NameStore::setName(std::string_view key, std::string name) {
    changeRecord(key, [&](DesktopRecord& record) { record.name = std::move(name); });
}

void NameStore::setAliases(std::string_view key, std::vector<std::string> aliases) {
    changeRecord(key, [&](DesktopRecord& record) { record.aliases = std::move(aliases); });
}

void NameStore::setIcon(std::string_view key, std::optional<std::string> icon) {
    changeRecord(key, [&](DesktopRecord& record) { record.icon = std::move(icon); });
}

void NameStore::setColor(std::string_view key, std::optional<std::string> color) {
    changeRecord(key, [&](DesktopRecord& record) { record.color = std::move(color); });
}

void NameStore::setDimmed(std::string_view key, bool isDimmed) {
    changeRecord(key, [&](DesktopRecord& record) { record.isDimmed = isDimmed; });
}

void NameStore::setOrder(std::string_view displayUuid, std::vector<std::string> keys) {
    change([&](NameStoreFile& file) { file.setOrder(displayUuid, std::move(keys)); });
}

void NameStore::updateLastSeen(const NameStoreFile::Map<LastSeen>& places) {
    std::lock_guard guard(lock_);
    // Looked at before anything is copied: mostly every desktop is where it was.
    std::vector<NameStoreFile::Map<LastSeen>::const_iterator> moved;
    for (auto place = places.begin(); place != places.end(); ++place) {
        const DesktopRecord* record = file_->record(place->first);
        if (record && !(record->lastSeen && record->lastSeen->samePlace(place->second)))
            moved.push_back(place);
    }
    if (moved.empty()) return;
    changeLocked([&](NameStoreFile& file) {
        for (const auto& place : moved) file.record(place->first)->lastSeen = place->second;
    });
}

void NameStore::setLink(const std::string& id, DisplayLink::Members members) {
    std::lock_guard guard(lock_);
    if (const auto* before = DisplayLink::members(*file_, id); before && *before == members) return;
    changeLocked([&](NameStoreFile& file) {
        if (!file.links) file.links.emplace();
        file.links->insert_or_assign(id, std::move(members));
    });
}

void NameStore::removeLink(const std::string& id, std::string_view reason) {
    {
        std::lock_guard guard(lock_);
        if (!DisplayLink::members(*file_, id)) return;
        changeLocked([&](NameStoreFile& file) { DisplayLink::remove(file, id); });
    }
    log(fmt::format("Lumnara link {}: {}", id, reason));
}

bool NameStore::pruneLinks(const LinkPruning::LiveKeys& liveKeys, Date now) {
    LinkPruning pruning;
    {
        std::lock_guard guard(lock_);
        if (file_->links) pruning = LinkPruning::of(*file_->links, liveKeys, missingSince_, now);
        missingSince_ = pruning.missingSince;
        if (!pruning.changed.empty())
            changeLocked([&](NameStoreFile& file) {
                for (auto& [id, left] : pruning.changed)
                    if (DisplayLink::isGroup(left))
                        file.links->insert_or_assign(id, std::move(left));
                    else
                        DisplayLink::remove(file, id);
            });
    }
    for (const std::string& line : pruning.lines) log(line);
    return !pruning.missingSince.empty();
}

void NameStore::change(const Edit& edit) {
    std::lock_guard guard(lock_);
    changeLocked(edit);
}

void NameStore::changeRecord(std::string_view key, const std::function<void(DesktopRecord&)>& edit) {
    std::lock_guard guard(lock_);
    if (!file_->record(key)) return;
    changeLocked([&](NameStoreFile& file) { edit(*file.record(key)); });
}

void NameStore::changeLocked(const Edit& edit) {
    // Readers hold the old contents for as long as they like, so a change is made on a copy.
    auto changed = std::make_shared<NameStoreFile>(*file_);
    edit(*changed);
    file_ = std::move(changed);
    scheduleSave();
}

void NameStore::scheduleSave() {
    if (loadError_ || std::exchange(saveAsked_, true)) return;
    // The timer belongs to the main thread; a change may come from any.
    inbox_->post([self = std::weak_ptr(self_)] {
        if (const auto store = self.lock()) (*store)->startDebounce();
    });
}

void NameStore::startDebounce() {
    {
        std::lock_guard guard(lock_);
        if (!std::exchange(saveAsked_, false)) return;
    }
    saving_.askAnew();
}

async::DelayedWork::Work NameStore::backgroundWrite() {
    return [this, now = loop_.date()] {
        try {
            write(now);
        } catch (const std::exception&) { // the next change tries again
        }
    };
}

void NameStore::saveNow() {
    {
        std::lock_guard guard(lock_);
        saveAsked_ = false;
    }
    if (loadError_) throw *loadError_;

    // On the queue like every write: contents then reach the disk in the order in which they were taken.
    std::exception_ptr failure;
    saving_.doNow([this, now = loop_.date(), &failure] {
        try {
            write(now);
        } catch (...) {
            failure = std::current_exception();
        }
    });
    if (failure) std::rethrow_exception(failure);
}

void NameStore::flush() { saving_.drain(); }

void NameStore::write(Date now) {
    // Not set in memory, where it would look like a change to everyone who compares contents.
    NameStoreFile contents = *file();
    contents.updatedAt = now;
    kept_.replace(NameStoreCodec::encode(contents));
    if (onSaved) onSaved();
}

} // namespace lumnara
