#include "core/automation/AutomationEditor.h"

#include "core/async/Task.h"
#include "core/automation/AutomationPresets.h"
#include "core/base/Uuid.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

constexpr std::size_t keptRemovals = 50;

template <class T> auto placeIn(const std::vector<T>& list, std::size_t place) {
    return list.begin() + static_cast<std::ptrdiff_t>(std::min(place, list.size()));
}

} // namespace

/// Saves what `edit` makes of a copy, unless it leaves that as it was.
template <class Edit> void AutomationEditor::change(std::string_view id, Edit edit) {
    const Automation* automation = store_.find(id);
    if (!automation) return;
    Automation changed = *automation;
    edit(changed);
    if (changed != *automation) store_.upsert(std::move(changed));
}

std::string AutomationEditor::addEmpty(const std::string& spaceKey) {
    std::string id = newUuid();
    store_.upsert({.id = id,
                   .spaceKey = spaceKey,
                   .name = "New Automation",
                   .icon = "bolt.fill",
                   .trigger = AutomationTrigger::onClick,
                   .actions = {}});
    return id;
}

std::string AutomationEditor::addPreset(const std::string& spaceKey, std::size_t preset) {
    Automation automation = AutomationPresets::all(spaceKey).at(preset);
    std::string id = automation.id;
    store_.upsert(std::move(automation));
    return id;
}

void AutomationEditor::rename(std::string_view id, std::string_view name) {
    const auto trimmed = text::trim(name);
    if (trimmed.empty()) throw AutomationEditError(AutomationEditError::Case::emptyName);
    change(id, [&](Automation& automation) { automation.name = trimmed; });
}

void AutomationEditor::setIcon(std::string_view id, std::string icon) {
    change(id, [&](Automation& automation) { automation.icon = std::move(icon); });
}

void AutomationEditor::setTrigger(std::string_view id, AutomationTrigger trigger) {
    change(id, [&](Automation& automation) { automation.trigger = trigger; });
}

void AutomationEditor::setEnabled(std::string_view id, bool isEnabled) {
    change(id, [&](Automation& automation) { automation.isEnabled = isEnabled; });
}

void AutomationEditor::remove(std::string_view id) {
    const Automation* automation = store_.find(id);
    if (!automation) return;
    const auto place = static_cast<std::size_t>(automation - store_.file().automations.data());
    keepRemoval({*automation, place, std::nullopt});
    cancelRun(automation->id);
    store_.remove(removals_.back().automation.id);
}

void AutomationEditor::addAction(std::string_view id, AutomationAction action) {
    action = ActionRules::checked(std::move(action), runner_.actionTimeout);
    change(id, [&](Automation& automation) { automation.actions.push_back(std::move(action)); });
}

void AutomationEditor::replaceAction(std::string_view id, std::size_t place, AutomationAction action) {
    action = ActionRules::checked(std::move(action), runner_.actionTimeout);
    change(id, [&](Automation& automation) {
        if (place < automation.actions.size()) automation.actions[place] = std::move(action);
    });
}

void AutomationEditor::moveAction(std::string_view id, std::size_t from, std::size_t to) {
    change(id, [&](Automation& automation) {
        auto& actions = automation.actions;
        if (from >= actions.size()) return;
        AutomationAction moved = std::move(actions[from]);
        actions.erase(placeIn(actions, from));
        actions.insert(placeIn(actions, to), std::move(moved));
    });
}

void AutomationEditor::removeAction(std::string_view id, std::size_t place) {
    change(id, [&](Automation& automation) {
        if (place >= automation.actions.size()) return;
        keepRemoval({automation, place, automation.actions[place]});
        automation.actions.erase(placeIn(automation.actions, place));
    });
}

void AutomationEditor::keepRemoval(Removal removal) {
    if (removals_.size() == keptRemovals) removals_.erase(removals_.begin());
    removals_.push_back(std::move(removal));
}

bool AutomationEditor::canUndo(const Removal& removal) const {
    const bool stands = store_.find(removal.automation.id) != nullptr;
    return removal.action ? stands : !stands;
}

std::vector<AutomationEditor::Removal>::const_reverse_iterator
AutomationEditor::lastRemoval(std::string_view spaceKey) const {
    return std::find_if(removals_.rbegin(), removals_.rend(), [&](const Removal& removal) {
        return removal.automation.spaceKey == spaceKey && canUndo(removal);
    });
}

std::optional<std::string> AutomationEditor::undoTitle(std::string_view spaceKey) const {
    const auto last = lastRemoval(spaceKey);
    if (last == removals_.rend()) return std::nullopt;
    if (!last->action) return fmt::format("“{}”", last->automation.name);
    return fmt::format("“{}” of “{}”", labelOf(*last->action), store_.find(last->automation.id)->name);
}

void AutomationEditor::undoRemoval(std::string_view spaceKey) {
    const auto last = lastRemoval(spaceKey);
    if (last == removals_.rend()) return;
    const Removal removal = *last;
    removals_.erase(std::next(last).base());
    if (!removal.action) {
        store_.insert(removal.automation, removal.place);
        return;
    }
    change(removal.automation.id, [&](Automation& automation) {
        automation.actions.insert(placeIn(automation.actions, removal.place), *removal.action);
    });
}

void AutomationEditor::runNow(const std::string& id) {
    const Automation* automation = store_.find(id);
    if (!automation) return;
    runs_.insert_or_assign(id, async::spawn(loop_, runToEnd(*automation)));
    runChanged.emit(id, std::nullopt);
}

void AutomationEditor::cancelRun(const std::string& id) {
    if (runs_.erase(id) > 0) runChanged.emit(id, std::nullopt);
}

async::Task<> AutomationEditor::runToEnd(Automation automation) {
    const auto context = co_await async::currentContext();
    if (context.stop.stop_requested()) co_return;
    const AutomationRunReport report = co_await runner_.run(automation);
    // Cancelled runs are forgotten by who cancelled them; the editor itself may be gone.
    if (context.stop.stop_requested()) co_return;
    runs_.erase(automation.id);
    runChanged.emit(automation.id, report);
}

} // namespace lumnara
