#include "core/catalog/DesktopCatalog.h"

#include "core/base/Log.h"
#include "core/catalog/CatalogMerge.h"
#include "core/catalog/DesktopOrder.h"
#include "core/names/DisplayLink.h"
#include "core/names/NameRules.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <unordered_set>
#include <utility>

namespace lumnara {

namespace {

/// The window server needs this long after waking until what it tells can be relied on.
constexpr double settleAfterWaking = 1.0;
/// A little more, since the grace is told by another clock.
constexpr double afterGrace = LinkPruning::graceSeconds + 0.05;

bool hasNameIn(const std::unordered_set<std::string>& normalizedKeys, const DesktopRecord& record) {
    const auto isIn = [&](const std::string& name) {
        return normalizedKeys.contains(NameRules::normalizedKey(name));
    };
    return (!record.name.empty() && isIn(record.name)) ||
           std::any_of(record.aliases.begin(), record.aliases.end(), isIn);
}

/// Whether it has to be done again, for a member that may yet come back.
bool pruneLinks(NameStore& store, const CatalogMerge::Reading& reading, Date now) {
    return store.file()->links && store.pruneLinks(reading.displaysOfSpaces(), now);
}

} // namespace

DesktopCatalog::DesktopCatalog(async::Loop& loop, SpaceProvider& provider, NameStore& store,
                               DisplayLinkMode linkMode)
    : loop_(loop),
      provider_(provider),
      store_(store),
      linkMode_(linkMode) {
    refresh();
}

void DesktopCatalog::startObserving(const EventSource& observe) {
    observers_ = observe([this](WorkspaceEvent event) { receive(event); });
}

void DesktopCatalog::receive(WorkspaceEvent event) {
    if (event == WorkspaceEvent::didWake)
        wakeDelay_ =
            std::make_unique<async::Delayed>(loop_, settleAfterWaking, [this] { refreshUnlessHeld(); });
    else
        refreshUnlessHeld();
}

void DesktopCatalog::refreshUnlessHeld() {
    if (held_.expired())
        refresh();
    else
        hasHeldWord_ = true;
}

std::shared_ptr<const void> DesktopCatalog::hold() {
    auto held = held_.lock();
    if (!held) {
        held = std::shared_ptr<const void>(&held_, [self = std::weak_ptr(self_)](const void*) {
            if (const auto catalog = self.lock()) (*catalog)->endHold();
        });
        held_ = held;
    }
    return held;
}

/// In a turn of its own: whoever lets go is in the midst of something, and another hold may follow at once.
void DesktopCatalog::endHold() {
    if (!hasHeldWord_) return;
    afterHold_ = std::make_unique<async::Delayed>(loop_, 0, [this] {
        if (held_.expired() && std::exchange(hasHeldWord_, false)) refresh();
    });
}

void DesktopCatalog::startRefreshTimer(double seconds) {
    refreshTimer_ = std::make_unique<async::Repeating>(loop_, seconds, [this] { refreshUnlessHeld(); });
}

void DesktopCatalog::stopRefreshTimer() { refreshTimer_.reset(); }

void DesktopCatalog::refresh() {
    hasHeldWord_ = false;
    SpaceSnapshot reading;
    try {
        reading = provider_.snapshot();
    } catch (const std::exception& error) {
        lastError.set(ReadingError{std::current_exception(), error.what()});
        return endRefresh();
    }
    lastError.set(std::nullopt);
    if (!*snapshot || (*snapshot)->displays != reading.displays) mustBuild_ = true;
    snapshot.set(std::move(reading));
    rebuild();
    if (onRefresh) onRefresh(**snapshot);
    endRefresh();
}

void DesktopCatalog::endRefresh() { refreshCount.set(*refreshCount + 1); }

void DesktopCatalog::rebuild() {
    if (!*snapshot) return;
    std::vector<std::string> names = displayNames();
    if (!mustBuild_ && names == builtNames_ && store_.file() == builtFile_) return;

    const CatalogMerge::Reading reading(**snapshot, names);
    if (const auto moves = CatalogMerge::reattachments(reading, *store_.file()); !moves.empty()) {
        for (const auto& move : moves) log(move.line);
        store_.change([&](NameStoreFile& file) {
            for (const auto& move : moves) file.rekey(move.oldKey, move.newKey, move.displayUuid);
        });
    }
    // Before the desktops are made, so that what is published is what is stored.
    mustBuild_ = pruneLinks(store_, reading, loop_.date());
    if (!mustBuild_) graceEnd_.reset();
    if (mustBuild_ && !graceEnd_)
        graceEnd_ = std::make_unique<async::Delayed>(loop_, afterGrace, [this] {
            graceEnd_.reset();
            refreshUnlessHeld();
        });
    CatalogMerge::LinkKeys links;
    if (linkMode_ == DisplayLinkMode::linked) links = CatalogMerge::linkKeys(reading, *store_.file());
    store_.updateLastSeen(CatalogMerge::places(reading, *store_.file(), links, loop_.date()));

    builtNames_ = std::move(names);
    builtFile_ = store_.file();
    auto builtDisplays = CatalogMerge::displays(reading, *builtFile_, links);
    auto builtOrphans = CatalogMerge::orphans(builtDisplays, *builtFile_);

    // An observer of what is told first may edit, and the rebuild of that edit publishes what is newer than
    // ours.
    const int serial = ++buildSerial_;
    displays.set(std::move(builtDisplays));
    if (serial == buildSerial_) activeLinkCount.set(CatalogMerge::activeLinkCount(links));
    if (serial == buildSerial_) orphans.set(std::move(builtOrphans));
}

std::vector<std::string> DesktopCatalog::displayNames() const {
    std::vector<std::string> names;
    for (const DisplaySpaces& display : (*snapshot)->displays) {
        const auto name = display.name ? display.name : provider_.displayName(display.display.uuid);
        names.push_back(name ? *name : display.display.isMain() ? "All Displays" : "Display");
    }
    return names;
}

std::vector<Desktop> DesktopCatalog::desktops() const {
    std::vector<Desktop> all;
    for (const DisplayDesktops& display : *displays)
        all.insert(all.end(), display.desktops.begin(), display.desktops.end());
    return all;
}

const DisplayDesktops* DesktopCatalog::display(std::string_view uuid) const {
    const auto found =
        std::find_if(displays->begin(), displays->end(), [&](const DisplayDesktops& candidate) {
            return text::equalsIgnoringCase(candidate.display.uuid, uuid);
        });
    return found == displays->end() ? nullptr : &*found;
}

std::vector<Desktop> DesktopCatalog::desktops(std::string_view displayUuid) const {
    const DisplayDesktops* found = display(displayUuid);
    return found ? found->desktops : std::vector<Desktop>();
}

const Desktop* DesktopCatalog::desktop(std::string_view key) const {
    for (const DisplayDesktops& display : *displays)
        for (const Desktop& desktop : display.desktops)
            if (desktop.key == key) return &desktop;
    return nullptr;
}

const Desktop* DesktopCatalog::desktopOfSpace(std::string_view spaceKey) const {
    for (const DisplayDesktops& display : *displays)
        for (const Desktop& desktop : display.desktops)
            if (desktop.spaceKey == spaceKey) return &desktop;
    return nullptr;
}

const Desktop* DesktopCatalog::currentDesktop(std::string_view displayUuid) const {
    const DisplayDesktops* found = display(displayUuid);
    return found ? found->current() : nullptr;
}

std::optional<DisplayID> DesktopCatalog::focusedDisplay() const {
    const auto& reading = snapshot.get();
    return reading && reading->focusedDisplay ? reading->focusedDisplay : provider_.menuBarDisplay();
}

const Desktop* DesktopCatalog::focusedDesktop() const {
    const auto focused = focusedDisplay();
    if (focused)
        if (const Desktop* current = currentDesktop(focused->uuid)) return current;
    return displays->empty() ? nullptr : displays->front().current();
}

std::string DesktopCatalog::displayName(std::string_view key) const {
    if (const Desktop* live = desktop(key)) return live->displayName();
    const auto record = store_.record(key);
    if (record && !record->name.empty()) return record->name;
    if (key.starts_with("fullscreen:")) return "Fullscreen app";
    if (key.starts_with("primary:")) return "Desktop 1";
    if (record && record->lastSeen) return "Desktop " + std::to_string(record->lastSeen->indexOnDisplay + 1);
    return "Desktop";
}

bool DesktopCatalog::isNamed(std::string_view key) const {
    const auto record = store_.record(key);
    return record && !record->name.empty();
}

void DesktopCatalog::setLinkMode(DisplayLinkMode mode) {
    if (mode == linkMode_) return;
    linkMode_ = mode;
    mustBuild_ = true;
    rebuild();
}

bool DesktopCatalog::isLinkAvailable() const {
    return linkMode_ == DisplayLinkMode::linked && displays->size() >= 2;
}

/// By its Space's key, else by the key of its group.
const Desktop* DesktopCatalog::desktopNamed(std::string_view key) const {
    const Desktop* ofSpace = desktopOfSpace(key);
    return ofSpace ? ofSpace : desktop(key);
}

bool DesktopCatalog::link(std::string keyA, std::string keyB) {
    const Desktop* a = desktopNamed(keyA);
    const Desktop* b = desktopNamed(keyB);
    if (!a || !b || text::equalsIgnoringCase(a->display.uuid, b->display.uuid)) {
        log(fmt::format("Lumnara link: refused, {} is not on another display or is on the same display as {}",
                        a ? keyB : keyA, a ? keyA : keyB));
        return false;
    }
    const auto before = store_.file();
    const auto group = DisplayLink::groupOf(*before, a->spaceKey);
    if (group && group == DisplayLink::groupOf(*before, b->spaceKey)) return true;

    DesktopRecord record;
    record.createdAt = loop_.date();
    if (a->record || b->record) record = a->record ? *a->record : *b->record;
    record.lastSeen.reset();
    // The old groups go last: their record, which may be this one, is in the file at every moment.
    const std::string id = DisplayLink::newID();
    store_.setRecord(DisplayLink::key(id), std::move(record));
    store_.setLink(id, {{a->display.uuid, a->spaceKey}, {b->display.uuid, b->spaceKey}});
    leaveGroups(*before, a->spaceKey, b->spaceKey);
    rebuild();
    if (onLinked) onLinked(keyA, keyB);
    return true;
}

/// Takes two desktops out of the groups that they were in.
void DesktopCatalog::leaveGroups(const NameStoreFile& before, const std::string& a, const std::string& b) {
    if (!before.links) return;
    for (const auto& [id, members] : *before.links) {
        DisplayLink::Members left = members;
        std::erase_if(left, [&](const auto& member) { return member.second == a || member.second == b; });
        if (left.size() == members.size()) continue;
        if (DisplayLink::isGroup(left))
            store_.setLink(id, std::move(left));
        else
            store_.removeLink(id, "left for another link");
    }
}

void DesktopCatalog::unlink(const std::string& key, std::string_view reason) {
    const auto contents = store_.file(); // the id may point into it
    const auto ofKey = DisplayLink::id(key);
    if (const auto id = ofKey ? ofKey : DisplayLink::groupOf(*contents, key)) {
        store_.removeLink(std::string(*id), reason);
        rebuild();
    }
}

std::vector<Desktop> DesktopCatalog::linkedMembers(std::string_view key) const {
    std::vector<Desktop> members;
    const Desktop* named = desktopNamed(key);
    if (!named || !named->isLinked()) return members;
    for (const DisplayDesktops& display : *displays)
        for (const Desktop& desktop : display.desktops)
            if (desktop.key == named->key) members.push_back(desktop);
    return members;
}

const Desktop* DesktopCatalog::linkedDesktop(std::string_view key, std::string_view onDisplay) const {
    const Desktop* named = desktopNamed(key);
    const DisplayDesktops* shown = display(onDisplay);
    if (!named || !named->isLinked() || !shown) return nullptr;
    const auto found = std::find_if(shown->desktops.begin(), shown->desktops.end(),
                                    [&](const Desktop& candidate) { return candidate.key == named->key; });
    return found == shown->desktops.end() ? nullptr : &*found;
}

std::vector<LinkCandidate> DesktopCatalog::linkCandidates() const {
    return lumnara::linkCandidates(*displays, *store_.file());
}

void DesktopCatalog::linkAll() {
    for (const LinkCandidate& pair : linkCandidates()) link(pair.first.spaceKey, pair.second.spaceKey);
}

void DesktopCatalog::rename(std::string key, std::string_view name) {
    const std::string valid = NameRules::validate(name);
    const auto record = store_.record(key);
    requireUnique(key, valid, record ? record->aliases : std::vector<std::string>());
    if (!requireRecord(key)) return;
    store_.setName(key, valid);
    rebuild();
    if (onRenamed) onRenamed(key);
}

void DesktopCatalog::enterName(const std::string& key, std::string_view typed) {
    const std::string_view name = text::trim(typed);
    if (!name.empty()) return rename(key, name);
    if (!isNamed(key)) return;
    store_.setName(key, {});
    rebuild();
    if (onRenamed) onRenamed(key);
}

void DesktopCatalog::setAliases(const std::string& key, const std::vector<std::string>& aliases) {
    std::vector<std::string> valid = NameRules::validate(aliases);
    const auto record = store_.record(key);
    if (!record) throw NameError::empty(); // aliases need a name first
    requireUnique(key, record->name, valid);
    store_.setAliases(key, std::move(valid));
    rebuild();
}

void DesktopCatalog::setIcon(const std::string& key, std::optional<std::string> symbol) {
    if (!requireRecord(key)) return;
    store_.setIcon(key, std::move(symbol));
    rebuild();
}

void DesktopCatalog::setColor(const std::string& key, std::optional<std::string> colorName) {
    if (!requireRecord(key)) return;
    store_.setColor(key, std::move(colorName));
    rebuild();
}

void DesktopCatalog::setDimmed(const std::string& key, bool isDimmed) {
    if (!requireRecord(key)) return;
    store_.setDimmed(key, isDimmed);
    rebuild();
}

void DesktopCatalog::forget(const std::string& key) {
    if (const auto id = DisplayLink::id(key)) store_.removeLink(std::string(*id), "forgotten");
    store_.removeRecord(key);
    rebuild();
}

void DesktopCatalog::attach(const std::string& orphanKey, const std::string& toDesktopKey) {
    const auto isOrphan = [&](const Orphan& orphan) { return orphan.key == orphanKey; };
    const auto record = store_.record(orphanKey);
    if (!record || std::none_of(orphans->begin(), orphans->end(), isOrphan) || !desktop(toDesktopKey)) return;
    requireUnique(toDesktopKey, record->name, record->aliases);
    store_.change([&](NameStoreFile& file) {
        file.desktops.erase(orphanKey);
        file.desktops.insert_or_assign(toDesktopKey, *record);
    });
    rebuild();
}

void DesktopCatalog::commitOrder(std::vector<std::string> keys, std::string_view displayUuid) {
    store_.setOrder(displayUuid, std::move(keys));
    rebuild();
}

std::optional<std::vector<std::string>>
DesktopCatalog::orderFollowing(std::string_view changedDisplay, std::string_view followingDisplay) const {
    const DisplayDesktops* changed = display(changedDisplay);
    const DisplayDesktops* follower = display(followingDisplay);
    if (!changed || !follower) return std::nullopt;
    return DesktopOrder::following(changed->desktops, follower->desktops);
}

/// Throws NameError::duplicateOnDisplay when another desktop of its display, or of any display of its link
/// group, has the name or an alias. The same name on another display is welcome, and a desktop that isn't
/// live stands in nobody's way.
void DesktopCatalog::requireUnique(const std::string& key, const std::string& name,
                                   const std::vector<std::string>& aliases) const {
    std::unordered_set<std::string> wanted;
    if (!name.empty()) wanted.insert(NameRules::normalizedKey(name));
    for (const std::string& alias : aliases) wanted.insert(NameRules::normalizedKey(alias));

    const auto isMeant = [&](const Desktop& desktop) { return desktop.key == key; };
    for (const DisplayDesktops& shown : *displays) {
        if (std::none_of(shown.desktops.begin(), shown.desktops.end(), isMeant)) continue;
        for (const Desktop& other : shown.desktops)
            if (other.key != key && other.record && hasNameIn(wanted, *other.record))
                throw NameError::duplicateOnDisplay(other.displayName());
    }
}

/// Makes the record where there is none. False for a link group that is gone: nobody would see the record.
bool DesktopCatalog::requireRecord(const std::string& key) {
    const auto contents = store_.file();
    if (contents->record(key)) return true;
    if (const auto id = DisplayLink::id(key); id && !DisplayLink::members(*contents, *id)) return false;
    DesktopRecord record;
    record.createdAt = loop_.date();
    store_.setRecord(key, std::move(record));
    return true;
}

} // namespace lumnara
