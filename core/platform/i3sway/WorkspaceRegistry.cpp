#include "core/platform/i3sway/WorkspaceRegistry.h"

#include "core/base/Log.h"
#include "core/base/Uuid.h"
#include "core/platform/i3sway/WorkspaceFile.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "core/platform/i3sway/WorkspaceOrder.h"

#include <algorithm>
#include <map>
#include <system_error>
#include <utility>

namespace lumnara {

namespace {

constexpr double saveDelay = 1.0;

/// FNV-1a, 64 bits (Fowler, Noll, Vo).
std::uint64_t hashOf(const std::string& text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const unsigned char c : text) hash = (hash ^ c) * 1099511628211U;
    return hash;
}

/// Puts an absent desktop among those that are there: by its number, and one without behind the unnumbered
/// one that it followed in `remembered`.
void insertAbsent(std::vector<const RegisteredDesktop*>& placed, const RegisteredDesktop& absent,
                  const std::vector<const RegisteredDesktop*>& remembered) {
    const std::uint64_t number = WorkspaceOrder::sortNumber(absent.workspace);
    auto position = std::ranges::find_if(
        placed, [&](const auto* other) { return WorkspaceOrder::sortNumber(other->workspace) > number; });
    if (number == WorkspaceOrder::noNumber) {
        position = std::ranges::find_if(placed, [&](const auto* other) {
            return WorkspaceOrder::sortNumber(other->workspace) == number;
        });
        for (auto before = std::ranges::find(remembered, &absent); before != remembered.begin();) {
            const auto found = std::ranges::find(placed, *--before);
            if (found == placed.end() || WorkspaceOrder::sortNumber((*found)->workspace) != number) continue;
            position = found + 1;
            break;
        }
    }
    placed.insert(position, &absent);
}

} // namespace

WorkspaceRegistry::WorkspaceRegistry(async::Loop& loop, std::filesystem::path file)
    : file_(std::move(file)),
      saving_(loop, "com.lumnara.workspaces", saveDelay, [this] { return saveWork(); }) {
    if (auto read = loadWorkspaceFile(file_, loop.date()))
        desktops_ = *std::move(read);
    else
        keepsFile_ = true;
    for (RegisteredDesktop& desktop : desktops_) {
        desktop.id = mintID(desktop.uuid);
        reading_ = std::max(reading_, desktop.lastSeen);
    }
    beginRun();
}

WorkspaceRegistry::~WorkspaceRegistry() { saveNow(); }

void WorkspaceRegistry::saveNow() {
    if (saving_.isToCome()) saving_.doNow(saveWork());
}

void WorkspaceRegistry::beginRun() {
    runBegins_ = true;
    displays_.clear();
    for (RegisteredDesktop& desktop : desktops_) {
        desktop.handle.reset();
        desktop.nameOwed = desktop.nameOwed || !desktop.asked.empty();
    }
}

void WorkspaceRegistry::renamed(std::int64_t handle, const std::string& name) {
    RegisteredDesktop* desktop = at(handle);
    if (!desktop) return;
    const auto asked = std::ranges::find(desktop->asked, name);
    if (asked == desktop->asked.end())
        desktop->ownName = name;
    else
        desktop->asked.erase(desktop->asked.begin(), asked + 1);
    desktop->workspace = name;
    claimName(*desktop);
    changed();
}

/// A desktop that is gone can't come back under the name of one that is there.
void WorkspaceRegistry::claimName(const RegisteredDesktop& desktop) {
    const std::string key = workspaceKey(desktop.workspace);
    for (RegisteredDesktop& other : desktops_)
        if (!other.handle && workspaceKey(other.workspace) == key) other.nameOwed = true;
}

void WorkspaceRegistry::released(std::int64_t handle) {
    if (RegisteredDesktop* desktop = at(handle)) desktop->handle.reset();
}

void WorkspaceRegistry::reconcile(const std::vector<LiveDisplay>& displays) {
    ++reading_;
    displays_.clear();
    std::vector<const LiveWorkspace*> live;
    std::vector<const std::string*> displayOf;
    for (const LiveDisplay& display : displays) {
        displays_.insert(display.uuid);
        for (const LiveWorkspace& workspace : display.workspaces) {
            live.push_back(&workspace);
            displayOf.push_back(&display.uuid);
        }
    }

    const std::vector<std::size_t> matched = match(live);
    for (RegisteredDesktop& desktop : desktops_) desktop.handle.reset();
    for (std::size_t i = 0; i < live.size(); ++i) {
        RegisteredDesktop& desktop = desktops_[matched[i]];
        desktop.handle = live[i]->handle;
        desktop.lastSeen = reading_;
        if (desktop.display != *displayOf[i]) {
            desktop.display = *displayOf[i];
            changed();
        }
    }
    place(displays, matched);
    forgetOldest();
}

/// The index of the desktop that each workspace is.
std::vector<std::size_t> WorkspaceRegistry::match(const std::vector<const LiveWorkspace*>& workspaces) {
    constexpr std::size_t none = ~std::size_t{0};
    std::vector<std::size_t> matched(workspaces.size(), none);
    std::set<std::size_t> taken;
    const auto matchRest = [&](const std::map<std::string, std::size_t>& indexes, const auto& onMatch) {
        for (std::size_t i = 0; i < workspaces.size(); ++i) {
            if (matched[i] != none) continue;
            const auto found = indexes.find(workspaceKey(workspaces[i]->name));
            if (found == indexes.end() || !taken.insert(found->second).second) continue;
            matched[i] = found->second;
            onMatch(desktops_[found->second], workspaces[i]->name);
        }
    };
    matchRest(byName(),
              [this](RegisteredDesktop& desktop, const std::string& name) { respell(desktop, name); });
    const auto takeName = [this](RegisteredDesktop& desktop, const std::string& name) {
        desktop.workspace = name;
        desktop.nameOwed = true;
        changed();
    };
    if (std::exchange(runBegins_, false)) {
        matchRest(byNameToCome(), takeName);
        for (RegisteredDesktop& desktop : desktops_) desktop.asked.clear();
    }
    if (std::ranges::find(matched, none) == matched.end()) return matched;
    matchRest(byOwnName(taken), takeName);
    for (std::size_t i = 0; i < workspaces.size(); ++i)
        if (matched[i] == none) matched[i] = add(workspaces[i]->name);
    return matched;
}

std::map<std::string, std::size_t> WorkspaceRegistry::byName() const {
    std::map<std::string, std::size_t> indexes;
    for (std::size_t i = 0; i < desktops_.size(); ++i) {
        const auto [entry, added] = indexes.emplace(workspaceKey(desktops_[i].workspace), i);
        if (!added && desktops_[i].handle) entry->second = i;
    }
    return indexes;
}

/// The window manager may have done what it was asked before the connection ended.
std::map<std::string, std::size_t> WorkspaceRegistry::byNameToCome() const {
    std::map<std::string, std::size_t> indexes;
    for (std::size_t i = 0; i < desktops_.size(); ++i)
        for (const std::string& name : desktops_[i].asked) indexes.emplace(workspaceKey(name), i);
    return indexes;
}

/// The window manager forgets titles, but the names and numbers below them go on.
std::map<std::string, std::size_t> WorkspaceRegistry::byOwnName(const std::set<std::size_t>& taken) const {
    std::map<std::string, std::size_t> indexes;
    for (std::size_t i = 0; i < desktops_.size(); ++i) {
        if (desktops_[i].title.empty() || taken.contains(i)) continue;
        indexes.emplace(workspaceKey(desktops_[i].ownName), i);
        indexes.emplace(leadingDigits(desktops_[i].ownName), i);
    }
    return indexes;
}

/// The same name, in other letters perhaps.
void WorkspaceRegistry::respell(RegisteredDesktop& desktop, const std::string& name) {
    if (desktop.workspace == name) return;
    if (desktop.ownName == desktop.workspace) desktop.ownName = name;
    desktop.workspace = name;
    changed();
}

std::size_t WorkspaceRegistry::add(const std::string& workspace) {
    const std::string uuid = newUuid();
    desktops_.push_back({.uuid = uuid,
                         .id = mintID(uuid),
                         .display = {},
                         .workspace = workspace,
                         .ownName = workspace,
                         .title = {}});
    changed();
    return desktops_.size() - 1;
}

SpaceID WorkspaceRegistry::mintID(const std::string& uuid) const {
    SpaceID id{hashOf(uuid)};
    while (id.raw == 0 || find(id)) ++id.raw;
    return id;
}

/// Orders the desktops of the displays of a reading: the window manager's order, the absent ones in between.
void WorkspaceRegistry::place(const std::vector<LiveDisplay>& displays,
                              const std::vector<std::size_t>& matched) {
    std::vector<const RegisteredDesktop*> order;
    auto next = matched.begin();
    for (const LiveDisplay& display : displays) {
        std::vector<const RegisteredDesktop*> placed;
        for (std::size_t i = 0; i < display.workspaces.size(); ++i) placed.push_back(&desktops_[*next++]);
        std::vector<const RegisteredDesktop*> remembered;
        for (const RegisteredDesktop& desktop : desktops_)
            if (desktop.display == display.uuid) remembered.push_back(&desktop);
        for (const RegisteredDesktop* desktop : remembered)
            if (!desktop->handle) insertAbsent(placed, *desktop, remembered);
        order.insert(order.end(), placed.begin(), placed.end());
    }
    for (const RegisteredDesktop& desktop : desktops_)
        if (!displays_.contains(desktop.display)) order.push_back(&desktop);

    bool moved = false;
    for (std::size_t i = 0; i < order.size(); ++i) moved = moved || order[i] != &desktops_[i];
    if (!moved) return;
    std::vector<RegisteredDesktop> ordered;
    for (const RegisteredDesktop* desktop : order) ordered.push_back(*desktop);
    desktops_ = std::move(ordered);
    changed();
}

void WorkspaceRegistry::forgetOldest() {
    const auto forgotten = static_cast<std::size_t>(
        std::ranges::count_if(desktops_, [](const auto& desktop) { return !desktop.isSpace(); }));
    for (std::size_t excess = forgotten; excess > mostForgotten; --excess) {
        const auto age = [](const RegisteredDesktop& desktop) {
            return std::pair(desktop.isSpace(), desktop.lastSeen);
        };
        desktops_.erase(std::ranges::min_element(desktops_, {}, age));
        changed();
    }
}

bool WorkspaceRegistry::setPublished(const std::vector<PublishedDesktop>& published) {
    std::map<std::string_view, const PublishedDesktop*> byKey;
    for (const PublishedDesktop& each : published) byKey.emplace(each.spaceKey, &each);
    bool ceased = false;
    for (RegisteredDesktop& desktop : desktops_) {
        const auto found = byKey.find(desktop.uuid);
        const bool listed = found != byKey.end();
        const bool wasTold = desktop.isSpace() && displays_.contains(desktop.display);
        if (!listed && !wasTold) continue;
        setTitle(desktop, listed ? found->second->name : "");
        if (desktop.kept == listed) continue;
        desktop.kept = listed;
        ceased = ceased || !desktop.isSpace();
        changed();
    }
    return ceased;
}

void WorkspaceRegistry::setTitle(RegisteredDesktop& desktop, const std::string& title) {
    if (desktop.title == title) return;
    desktop.title = title;
    desktop.nameOwed = true;
    desktop.refusals = 0;
    changed();
}

std::vector<WorkspaceRegistry::Rename> WorkspaceRegistry::settleNames(const NameMaker& makeName) {
    std::set<std::string> taken;
    for (const RegisteredDesktop& desktop : desktops_) {
        if (desktop.handle || !desktop.nameOwed) taken.insert(workspaceKey(desktop.nextName()));
    }
    std::vector<Rename> renames;
    for (RegisteredDesktop& desktop : desktops_) {
        if (!std::exchange(desktop.nameOwed, false)) continue;
        if (desktop.handle) taken.erase(workspaceKey(desktop.nextName()));
        const std::string name = makeName(desktop.ownName, desktop.title, taken);
        taken.insert(workspaceKey(name));
        // A title that was on the workspace before we knew it: below it is the bare number.
        const std::string_view number = leadingDigits(desktop.ownName);
        if (!desktop.title.empty() && name == desktop.ownName && !number.empty())
            desktop.ownName = std::string(number);
        changed();
        if (!desktop.handle) {
            desktop.workspace = name;
        } else if (desktop.nextName() != name) {
            renames.push_back({.uuid = desktop.uuid, .from = desktop.nextName(), .to = name});
            desktop.asked.push_back(name);
        }
    }
    return renames;
}

bool WorkspaceRegistry::renameRefused(const Rename& rename) {
    RegisteredDesktop* desktop = at(rename.uuid);
    if (!desktop) return true;
    std::erase(desktop->asked, rename.to);
    claimName(*desktop);
    const bool last = ++desktop->refusals > 1;
    desktop->nameOwed = desktop->nameOwed || !last;
    changed();
    return last;
}

void WorkspaceRegistry::create(const std::string& display) {
    std::set<std::uint64_t> taken;
    std::uint64_t number = 1;
    for (const RegisteredDesktop& desktop : desktops_) {
        if (!desktop.isSpace()) continue;
        for (const std::string& name : {desktop.ownName, desktop.workspace, desktop.nextName()}) {
            const std::uint64_t its = WorkspaceOrder::sortNumber(name);
            taken.insert(its);
            if (desktop.display == display && its < WorkspaceOrder::passingNumber)
                number = std::max(number, its + 1);
        }
    }
    while (taken.contains(number)) ++number;

    // One that was only remembered for its name is not this one.
    std::erase_if(desktops_, [&](const RegisteredDesktop& desktop) {
        return !desktop.isSpace() && WorkspaceOrder::sortNumber(desktop.workspace) == number;
    });
    RegisteredDesktop& desktop = desktops_[add(std::to_string(number))];
    desktop.display = display;
    desktop.added = true;
}

void WorkspaceRegistry::remove(SpaceID id) {
    if (std::erase_if(desktops_, [id](const auto& desktop) { return desktop.id == id && !desktop.handle; }))
        changed();
}

std::vector<WorkspaceRegistry::Rename> WorkspaceRegistry::arrange(const std::vector<SpaceID>& order,
                                                                  IpcDialect dialect) {
    std::vector<const RegisteredDesktop*> ordered;
    for (const SpaceID id : order)
        if (const RegisteredDesktop* desktop = find(id)) ordered.push_back(desktop);
    std::vector<Rename> renames;
    if (ordered.empty()) return renames;
    const auto current = spaces(ordered.front()->display);
    for (const WorkspaceOrder::Step& step : WorkspaceOrder::steps(current, ordered, dialect)) {
        RegisteredDesktop& desktop = *at(step.uuid);
        if (desktop.handle) {
            renames.push_back({.uuid = step.uuid, .from = desktop.nextName(), .to = step.name});
            desktop.asked.push_back(step.name);
        } else {
            desktop.workspace = step.name;
            desktop.ownName = WorkspaceOrder::renumbered(desktop.ownName, step.name);
        }
    }
    moveTo(order);
    changed();
    return renames;
}

/// Puts the desktops, which keep their places as a whole, into this order.
void WorkspaceRegistry::moveTo(const std::vector<SpaceID>& order) {
    std::vector<RegisteredDesktop> moved;
    for (const SpaceID id : order)
        if (const RegisteredDesktop* desktop = find(id)) moved.push_back(*desktop);
    auto next = moved.begin();
    for (RegisteredDesktop& desktop : desktops_)
        if (std::ranges::find(order, desktop.id) != order.end()) desktop = std::move(*next++);
}

void WorkspaceRegistry::arranged(const std::vector<Rename>& renames) {
    std::map<std::string, std::string> aims;
    for (const Rename& rename : renames) {
        aims[rename.uuid] = rename.to;
        if (RegisteredDesktop* desktop = at(rename.uuid)) std::erase(desktop->asked, rename.to);
    }
    for (const auto& [uuid, aim] : aims) {
        RegisteredDesktop* desktop = at(uuid);
        if (!desktop) continue;
        if (desktop->workspace == aim)
            desktop->ownName = WorkspaceOrder::renumbered(desktop->ownName, aim);
        else if (WorkspaceOrder::isPassing(desktop->workspace))
            desktop->nameOwed = true;
        claimName(*desktop);
    }
    changed();
}

std::vector<const RegisteredDesktop*> WorkspaceRegistry::spaces(const std::string& display) const {
    std::vector<const RegisteredDesktop*> found;
    for (const RegisteredDesktop& desktop : desktops_)
        if (desktop.display == display && desktop.isSpace()) found.push_back(&desktop);
    return found;
}

const RegisteredDesktop* WorkspaceRegistry::find(SpaceID id) const {
    const auto found = std::ranges::find(desktops_, id, &RegisteredDesktop::id);
    return found == desktops_.end() ? nullptr : &*found;
}

const RegisteredDesktop* WorkspaceRegistry::find(std::int64_t handle) const {
    const auto found = std::ranges::find(desktops_, handle, &RegisteredDesktop::handle);
    return found == desktops_.end() ? nullptr : &*found;
}

RegisteredDesktop* WorkspaceRegistry::at(std::int64_t handle) {
    return const_cast<RegisteredDesktop*>(std::as_const(*this).find(handle));
}

RegisteredDesktop* WorkspaceRegistry::at(const std::string& uuid) {
    const auto found = std::ranges::find(desktops_, uuid, &RegisteredDesktop::uuid);
    return found == desktops_.end() ? nullptr : &*found;
}

void WorkspaceRegistry::changed() {
    if (!keepsFile_) saving_.ask();
}

async::DelayedWork::Work WorkspaceRegistry::saveWork() {
    return [this, contents = encodeWorkspaceFile(desktops_)] {
        try {
            file_.replace(contents);
        } catch (const std::system_error& error) {
            log(std::string("Lumnara workspaces: not saved: ") + error.what());
        }
    };
}

} // namespace lumnara
