#pragma once

#include "core/async/Signal.h"
#include "core/async/TaskHandle.h"
#include "core/automation/ActionRules.h"
#include "core/automation/AutomationEditError.h"
#include "core/automation/AutomationRunner.h"
#include "core/automation/AutomationStore.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// The editing of automations, for the surface that shows them. Reads go to the store, whose `changed` tells
/// when to read again. Main thread; loop, store and runner outlive it.
///
/// A change throws AutomationEditError for bad input, with nothing changed, and what the store throws when
/// it can't save: the change then holds in memory. An id or a place that is gone changes nothing.
class AutomationEditor {
public:
    AutomationEditor(async::Loop& loop, AutomationStore& store, AutomationRunner& runner)
        : loop_(loop),
          store_(store),
          runner_(runner) {}
    AutomationEditor(const AutomationEditor&) = delete;
    AutomationEditor& operator=(const AutomationEditor&) = delete;

    std::vector<Automation> automations(std::string_view spaceKey) const {
        return store_.automations(spaceKey);
    }

    // What adds returns the new id.
    std::string addEmpty(const std::string& spaceKey);
    /// `preset` is a place in AutomationPresets::all.
    std::string addPreset(const std::string& spaceKey, std::size_t preset);

    void rename(std::string_view id, std::string_view name);
    void setIcon(std::string_view id, std::string icon);
    void setTrigger(std::string_view id, AutomationTrigger trigger);
    void setEnabled(std::string_view id, bool isEnabled);
    void remove(std::string_view id);

    void addAction(std::string_view id, AutomationAction action);
    void replaceAction(std::string_view id, std::size_t place, AutomationAction action);
    /// Takes the action at `from` out and puts it in at `to` of what is left; past the end means the end.
    void moveAction(std::string_view id, std::size_t from, std::size_t to);
    void removeAction(std::string_view id, std::size_t place);

    /// What undoRemoval would bring back to a desktop, "“Focus”" or "“Wait 2s” of “Focus”"; nothing when
    /// there is nothing.
    std::optional<std::string> undoTitle(std::string_view spaceKey) const;
    /// Puts what was last removed from the desktop's automations here back in its place.
    void undoRemoval(std::string_view spaceKey);

    /// Runs it now, enabled or not; a run of it that is under way is cancelled first.
    void runNow(const std::string& id);
    void cancelRun(const std::string& id);
    bool isRunning(const std::string& id) const { return runs_.contains(id); }
    /// A run begun here began or ended; with its id, and its report when it came to its end.
    async::Signal<const std::string&, const std::optional<AutomationRunReport>&> runChanged;

private:
    struct Removal {
        Automation automation;                  ///< as it was before
        std::size_t place;                      ///< in the file, or of the action
        std::optional<AutomationAction> action; ///< when it was one that was removed
    };
    template <class Edit> void change(std::string_view id, Edit edit);
    void keepRemoval(Removal removal);
    bool canUndo(const Removal& removal) const;
    std::vector<Removal>::const_reverse_iterator lastRemoval(std::string_view spaceKey) const;
    async::Task<> runToEnd(Automation automation);

    async::Loop& loop_;
    AutomationStore& store_;
    AutomationRunner& runner_;
    std::vector<Removal> removals_;
    std::map<std::string, async::TaskHandle> runs_;
};

} // namespace lumnara
