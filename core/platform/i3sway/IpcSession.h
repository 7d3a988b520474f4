#pragma once

#include "core/async/Signal.h"
#include "core/platform/i3sway/I3Ipc.h"
#include "core/platform/i3sway/IpcFrontApplication.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "core/platform/i3sway/WorkspaceRegistry.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/Workspace.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// What the seams over one i3 or sway share: the connection, the registry of desktops, and a reading of
/// both at once. Main thread; it has to outlive the seams.
class IpcSession : private I3Ipc::Listener {
public:
    struct Setup {
        IpcDialect dialect = IpcDialect::i3;
        I3Ipc::Setup ipc;
        std::filesystem::path registryFile;
        /// The identity of an output's monitor, under which it is known on any connector.
        std::function<std::string(const IpcOutputReply& output)> identify;
    };

    struct Display {
        /// The monitor's identity; of two that have the same one, the second adds its connector.
        std::string uuid;
        IpcOutputReply output;
        /// What it shows; nothing while it is being plugged or unplugged.
        std::optional<SpaceID> current;
        bool focused = false;
    };

    IpcSession(async::Loop& loop, Setup setup);

    I3Ipc& ipc() { return ipc_; }
    WorkspaceRegistry& registry() { return registry_; }
    IpcDialect dialect() const { return dialect_; }

    /// Reads outputs and workspaces and takes them into the registry: the active displays, left to right
    /// and then top to bottom. Throws WindowManagerError.
    std::vector<Display> read();
    /// The displays of the last reading, if nothing has happened since; else reads. The reference holds until
    /// the next reading. Throws WindowManagerError.
    const std::vector<Display>& displays();

    /// An answer, and how many events had been told before it.
    struct Told {
        std::vector<IpcWorkspaceReply> workspaces;
        std::uint64_t events = 0;
    };
    /// Sends the command that shows a desktop, and makes its workspace again on its display if it is gone.
    /// The keyboard goes there too, or to `focused` in the end. `onOutcomes` is called when `told` says what
    /// is shown then. Throws WindowManagerError, also when nobody knows the desktop.
    void activate(SpaceID space, const DisplayID& display, const DisplayID* focused,
                  std::shared_ptr<std::optional<Told>> told, I3Ipc::OnOutcomes onOutcomes);
    /// What the display shows by that answer; nothing when it doesn't tell or something has happened since.
    std::optional<SpaceID> shownOn(const DisplayID& display, const Told& told);

    /// Throws WindowManagerError.
    std::optional<RunningApp> frontmostApplication();

    /// The command that shows a desktop and gives it the keyboard. Throws WindowManagerError when nobody
    /// knows the desktop or the display.
    std::string showing(SpaceID space, const DisplayID& display) const;
    /// The command that gives the keyboard to a display; nothing for one that nobody knows.
    std::optional<std::string> focusing(const DisplayID& display) const;
    /// The command that renames a workspace.
    std::string renaming(const std::string& from, const std::string& to) const;

    /// Takes in which desktops have records, and puts their names on the workspaces: now, or once the window
    /// manager can be asked. Doesn't wait for it.
    void publish(const std::vector<PublishedDesktop>& desktops);

    /// Desktops came or went in the registry alone.
    void noteChange();

    /// Something changed; emitted outside of any reading, once of a kind for all that came together.
    async::Signal<WorkspaceEvent>& changed() { return changed_; }
    /// The window manager has lost what it was told of key bindings.
    async::Signal<>& bindingsLost() { return bindingsLost_; }
    /// A key binding ran this command.
    async::Signal<const std::string&>& bindingRan() { return bindingRan_; }

private:
    void onConnected() override;
    void onLost() override;
    void onEvent(const IpcFrame& event) override;
    void onWorkspaceEvent(const IpcWorkspaceEvent& event);

    std::vector<Display> take(const Told& told);
    void readMonitorsIfStale(const std::vector<IpcWorkspaceReply>& workspaces);
    std::vector<Display> identified(std::vector<IpcOutputReply> outputs) const;
    void settleNames();
    void tellLater();
    void tell();

    async::Loop& loop_;
    IpcDialect dialect_;
    std::function<std::string(const IpcOutputReply&)> identify_;
    WorkspaceRegistry registry_;
    /// Counts the events that a reading may differ by.
    std::uint64_t events_ = 0;
    /// The monitors since they last changed, without what they show.
    std::vector<Display> monitors_;
    bool monitorsStale_ = true;
    /// The outputs that showed something as `monitors_` were read, with what they left it.
    std::map<std::string, Rect> outputsShown_;
    /// The last reading, and `events_` as it was answered.
    std::vector<Display> displays_;
    std::optional<std::uint64_t> displaysAt_;
    IpcFrontApplication front_;
    /// The connectors of the displays of the last reading.
    std::map<std::string, std::string> connectors_;

    /// What is still to be told.
    struct News {
        bool space = false;
        bool screens = false;
        bool bindingsLost = false;
        std::vector<std::string> bindingsRun;
    };
    News news_;
    /// Those who are being told that something changed have not read yet.
    bool tellingSpace_ = false;
    std::unique_ptr<async::Delayed> telling_;
    async::Signal<WorkspaceEvent> changed_;
    async::Signal<> bindingsLost_;
    async::Signal<const std::string&> bindingRan_;
    I3Ipc ipc_;
};

} // namespace lumnara
