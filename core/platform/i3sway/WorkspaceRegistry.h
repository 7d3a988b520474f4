#pragma once

#include "core/async/DelayedWork.h"
#include "core/base/KeptFile.h"
#include "core/platform/i3sway/RegisteredDesktop.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "core/seams/DesktopNamePublisher.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumnara {

/// Which workspace is which desktop, across readings, restarts of the window manager and unplugged monitors.
///
/// i3 and sway forget an empty workspace when it is left, and know one by its name alone, which is unique
/// over all outputs. So a workspace is the desktop that bears its name; failing that, one that was to get the
/// name when the run before ended; failing that, the one whose own name or number it bears and whose title
/// the window manager has forgotten. Announced renames are followed within a run. Desktops with a record, and
/// those that were added here, stay when their workspace goes; the others only keep their uuid for the case
/// that the name comes back, the newest of them.
///
/// References into the registry hold until its next change. Main thread.
class WorkspaceRegistry {
public:
    struct LiveWorkspace {
        std::int64_t handle = 0;
        std::string name;
    };
    struct LiveDisplay {
        std::string uuid;
        /// In the window manager's order.
        std::vector<LiveWorkspace> workspaces;
    };

    /// A workspace to rename.
    struct Rename {
        std::string uuid;
        std::string from;
        std::string to;
        bool operator==(const Rename&) const = default;
    };
    /// Makes the workspace name for an own name and a title, none of `taken` (by workspaceKey).
    using NameMaker = std::function<std::string(const std::string& ownName, const std::string& title,
                                                const std::set<std::string>& taken)>;

    /// How many desktops without a record and without a workspace are remembered.
    static constexpr std::size_t mostForgotten = 200;

    /// Reads the file. A damaged one is moved aside and the registry starts empty.
    WorkspaceRegistry(async::Loop& loop, std::filesystem::path file);
    /// Writes what has not been written.
    ~WorkspaceRegistry();

    /// Writes now what is to be written, and waits for it.
    void saveNow();

    /// The window manager may be another one: its containers mean nothing any more.
    void beginRun();
    /// The workspace of that container has a new name.
    void renamed(std::int64_t handle, const std::string& name);
    /// The container is another workspace now, or none.
    void released(std::int64_t handle);
    /// Takes in a whole reading.
    void reconcile(const std::vector<LiveDisplay>& displays);
    /// Whether there has been a reading in this run.
    bool hasReading() const { return !runBegins_; }

    /// Takes in the desktops that have records. Those of displays that are unplugged are never told and stay
    /// as they are. Returns whether a Space ceased to be one.
    bool setPublished(const std::vector<PublishedDesktop>& desktops);
    /// The workspaces to rename so that they show their titles. A desktop without a workspace is given its
    /// name here.
    std::vector<Rename> settleNames(const NameMaker& makeName);
    /// The window manager did not do a rename of settleNames. Once it is due again, in case the workspace had
    /// been renamed meanwhile; returns whether that was the last attempt.
    bool renameRefused(const Rename& rename);

    /// A new desktop of the display, behind its others that have a number. Its workspace is made when one
    /// goes there; until it is removed it is a Space all the same.
    void create(const std::string& display);
    /// The desktop is none any more, unless it has a workspace.
    void remove(SpaceID id);
    /// The workspaces to rename, one after the other, for this order of all the Spaces of one display, as
    /// WorkspaceOrder has it. A desktop without a workspace is moved and given its name here.
    std::vector<Rename> arrange(const std::vector<SpaceID>& order, IpcDialect dialect);
    /// The window manager has answered to the renames of arrange(), and announced those that it did.
    void arranged(const std::vector<Rename>& renames);

    /// The desktops of a display, in their places.
    std::vector<const RegisteredDesktop*> spaces(const std::string& display) const;
    const RegisteredDesktop* find(SpaceID id) const;
    const RegisteredDesktop* find(std::int64_t handle) const;

private:
    RegisteredDesktop* at(std::int64_t handle);
    RegisteredDesktop* at(const std::string& uuid);
    void moveTo(const std::vector<SpaceID>& order);
    std::size_t add(const std::string& workspace);
    SpaceID mintID(const std::string& uuid) const;
    std::vector<std::size_t> match(const std::vector<const LiveWorkspace*>& workspaces);
    std::map<std::string, std::size_t> byName() const;
    std::map<std::string, std::size_t> byNameToCome() const;
    std::map<std::string, std::size_t> byOwnName(const std::set<std::size_t>& taken) const;
    void respell(RegisteredDesktop& desktop, const std::string& name);
    void place(const std::vector<LiveDisplay>& displays, const std::vector<std::size_t>& matched);
    void forgetOldest();
    void claimName(const RegisteredDesktop& desktop);
    void setTitle(RegisteredDesktop& desktop, const std::string& title);

    void changed();
    async::DelayedWork::Work saveWork();

    KeptFile file_;
    /// The file could not be read, and nothing is written over it.
    bool keepsFile_ = false;
    /// Display by display in the order of their places.
    std::vector<RegisteredDesktop> desktops_;
    /// The displays of the last reading.
    std::set<std::string> displays_;
    /// There has been no reading in this run.
    bool runBegins_ = true;
    std::uint64_t reading_ = 0;
    async::DelayedWork saving_;
};

} // namespace lumnara
