#pragma once

#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/catalog/Desktop.h"
#include "core/catalog/DisplayLinkMode.h"
#include "core/catalog/LinkCandidates.h"
#include "core/model/SpaceProvider.h"
#include "core/names/NameStore.h"
#include "core/seams/WorkspaceEvent.h"

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// Why the last reading of the layout failed.
struct ReadingError {
    std::exception_ptr error;
    /// What a surface shows.
    std::string sentence;

    bool operator==(const ReadingError& other) const { return sentence == other.sentence; }
};

/// The live model that everyone looks at: the layout of a SpaceProvider merged with the records of the
/// NameStore. It finds records whose Space has gone, puts records back on Spaces that changed their uuid,
/// and carries out every change of a name, alias, icon, colour or dimming.
///
/// Main thread. The provider and the store outlive it. An observer may edit while it is being told; it
/// must not destroy the catalog.
class DesktopCatalog {
public:
    /// Registers a receiver of the session's events for as long as the subscription lives.
    using EventSource = std::function<async::Subscription(std::function<void(WorkspaceEvent)>)>;

    /// Reads once at once.
    DesktopCatalog(async::Loop& loop, SpaceProvider& provider, NameStore& store,
                   DisplayLinkMode linkMode = DisplayLinkMode::independent);
    DesktopCatalog(const DesktopCatalog&) = delete;
    DesktopCatalog& operator=(const DesktopCatalog&) = delete;

    // What views bind to; changed by the catalog alone. Told only when they differ.
    async::Observable<std::vector<DisplayDesktops>> displays;
    /// Records with no live Space, sorted by name.
    async::Observable<std::vector<Orphan>> orphans;
    /// How many link groups hold two or more desktops together; 0 while links don't hold.
    async::Observable<int> activeLinkCount;
    /// The last good reading.
    async::Observable<std::optional<SpaceSnapshot>> snapshot;
    /// The error of the last reading; cleared by a good one.
    async::Observable<std::optional<ReadingError>> lastError;
    /// How many refreshes have ended, good or bad.
    async::Observable<int> refreshCount;

    /// Called after every good refresh; the reading stands until the next one.
    std::function<void(const SpaceSnapshot&)> onRefresh;
    /// Called with the desktop's key after a successful rename, also to no name.
    std::function<void(const std::string& key)> onRenamed;
    /// Called with the keys of two desktops that have been linked, as link() was given them.
    std::function<void(const std::string& keyA, const std::string& keyB)> onLinked;

    SpaceProvider& provider() const { return provider_; }
    NameStore& store() const { return store_; }

    /// Refreshes at the session's events; after waking 1 second later, when the window server has settled.
    void startObserving(const EventSource& observe);
    /// Refreshes every `seconds` until stopRefreshTimer(); replaces an earlier timer.
    void startRefreshTimer(double seconds);
    void stopRefreshTimer();

    /// While the result lives, the word of a change is held: what the session, a timer or a wake-up would
    /// have had read is read once, soon after the last hold has ended. The result may outlive the catalog.
    [[nodiscard]] std::shared_ptr<const void> hold();

    /// Reads the layout and rebuilds. A failed reading goes to lastError and the model stays.
    void refresh();

    /// All desktops, in display order. Copies.
    std::vector<Desktop> desktops() const;
    /// The desktops of one display, found by its uuid in any case. Copies.
    std::vector<Desktop> desktops(std::string_view displayUuid) const;
    // The following point into `displays` and are valid until the next refresh or edit; null for none.
    const DisplayDesktops* display(std::string_view uuid) const;
    const Desktop* desktop(std::string_view key) const;
    const Desktop* desktopOfSpace(std::string_view spaceKey) const;
    const Desktop* currentDesktop(std::string_view displayUuid) const;
    /// The display with the active menu bar, or nothing.
    std::optional<DisplayID> focusedDisplay() const;
    /// The current desktop of the display with the active menu bar, else of the first display.
    const Desktop* focusedDesktop() const;
    /// What to call a key, whether it is live, only recorded, or neither.
    std::string displayName(std::string_view key) const;
    /// A record exists and has a name.
    bool isNamed(std::string_view key) const;

    DisplayLinkMode linkMode() const { return linkMode_; }
    void setLinkMode(DisplayLinkMode mode);
    /// Links hold and there are displays of their own to link.
    bool isLinkAvailable() const;

    // A key of the following is that of a desktop's Space, or a group's "link:<id>".

    /// Makes one of two desktops on different displays: they share the first one's record, else the
    /// second's, and keep their own for the end of the link. Either first leaves the group it is in. Whether
    /// they are linked now; a refusal is logged and changes nothing.
    bool link(std::string keyA, std::string keyB);
    /// Dissolves the group, for this reason in the log. Its desktops have their own records again.
    void unlink(const std::string& key, std::string_view reason);
    /// The live desktops of a group, in display order; none when no link holds. Copies.
    std::vector<Desktop> linkedMembers(std::string_view key) const;
    /// The group's desktop on a display, or null. Points into `displays`, like the above.
    const Desktop* linkedDesktop(std::string_view key, std::string_view onDisplay) const;
    /// Unlinked desktops of different displays that have the same name.
    std::vector<LinkCandidate> linkCandidates() const;
    /// Links all of them.
    void linkAll();

    // The edits. Those that may fail throw NameError and leave everything as it was. The key of a link group
    // edits the record of all its desktops; nothing happens once the group is gone.
    void rename(std::string key, std::string_view name);
    /// What a user typed as the name: blanks alone leave the desktop without one, and all else of its record
    /// as it was.
    void enterName(const std::string& key, std::string_view typed);
    void setAliases(const std::string& key, const std::vector<std::string>& aliases);
    void setIcon(const std::string& key, std::optional<std::string> symbol);
    void setColor(const std::string& key, std::optional<std::string> colorName);
    void setDimmed(const std::string& key, bool isDimmed);
    /// Removes the record, and the group of a "link:" key with it.
    void forget(const std::string& key);
    /// Gives an orphan's record to a live desktop, in place of a record there. Throws NameError. Nothing
    /// happens when the one isn't an orphan or the other isn't live.
    void attach(const std::string& orphanKey, const std::string& toDesktopKey);
    /// Stores the order of a display's desktops.
    void commitOrder(std::vector<std::string> keys, std::string_view displayUuid);
    /// The order of a display that follows another one, whose order has changed: its linked desktops stand as
    /// they do there. Nothing where nothing is to change.
    std::optional<std::vector<std::string>> orderFollowing(std::string_view changedDisplay,
                                                           std::string_view followingDisplay) const;

private:
    void receive(WorkspaceEvent event);
    void refreshUnlessHeld();
    void endHold();
    void endRefresh();
    void rebuild();
    std::vector<std::string> displayNames() const;
    void requireUnique(const std::string& key, const std::string& name,
                       const std::vector<std::string>& aliases) const;
    bool requireRecord(const std::string& key);
    const Desktop* desktopNamed(std::string_view key) const;
    void leaveGroups(const NameStoreFile& before, const std::string& a, const std::string& b);

    async::Loop& loop_;
    SpaceProvider& provider_;
    NameStore& store_;
    DisplayLinkMode linkMode_;
    /// The layout or the link mode differs from that which was last built from, or a missing member of a
    /// link group has its time running.
    bool mustBuild_ = true;
    /// What else the published model was built from.
    std::vector<std::string> builtNames_;
    std::shared_ptr<const NameStoreFile> builtFile_;
    int buildSerial_ = 0;
    async::Subscription observers_;
    std::weak_ptr<const void> held_;
    /// There has been word of a change while it was held.
    bool hasHeldWord_ = false;
    std::unique_ptr<async::Delayed> afterHold_;
    std::unique_ptr<async::Repeating> refreshTimer_;
    std::unique_ptr<async::Delayed> wakeDelay_;
    /// While a member of a link group is missing: whether it has come back is looked at in time, though
    /// nothing else may happen.
    std::unique_ptr<async::Delayed> graceEnd_;
    /// By this a hold knows whether the catalog still stands.
    std::shared_ptr<DesktopCatalog*> self_ = std::make_shared<DesktopCatalog*>(this);
};

} // namespace lumnara
