#pragma once

#include "core/async/Signal.h"
#include "core/platform/i3sway/I3Ipc.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "core/platform/i3sway/WorkspaceRegistry.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/Workspace.h"

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

    /// Sends the command that shows a desktop, and makes its workspace again on its display if it is gone.
    /// The keyboard goes there too, or to `focused` in the end. `onOutcomes` is called when what is shown
    /// then is told as well, so that the reading that follows waits for nothing. Throws WindowManagerError,
    /// also when nobody knows the desktop.
    void activate(SpaceID space, const DisplayID& display, const DisplayID* focused,
                  I3Ipc::OnOutcomes onOutcomes);

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

    std::vector<IpcWorkspaceReply> readWorkspaces();
    void readDisplays();
    std::vector<Display> identified(std::vector<IpcOutputReply> outputs) const;
    void settleNames();
    void tellLater();
    void tell();

    async::Loop& loop_;
    IpcDialect dialect_;
    std::function<std::string(const IpcOutputReply&)> identify_;
    WorkspaceRegistry registry_;
    /// What a switch asked ahead, and when it was told; of no use once anything has happened since.
    struct ToldAhead {
        std::vector<IpcWorkspaceReply> workspaces;
        async::Nanos at;
    };
    std::optional<ToldAhead> toldAhead_;
    /// The displays since monitors last changed, without what they show.
    std::vector<Display> displays_;
    bool displaysStale_ = true;
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
    std::unique_ptr<async::Delayed> telling_;
    async::Signal<WorkspaceEvent> changed_;
    async::Signal<> bindingsLost_;
    async::Signal<const std::string&> bindingRan_;
    I3Ipc ipc_;
};

} // namespace lumnara
