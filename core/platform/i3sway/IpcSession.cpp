#include "core/platform/i3sway/IpcSession.h"

#include "core/base/Log.h"
#include "core/text/Text.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace lumnara {

IpcSession::IpcSession(async::Loop& loop, Setup setup)
    : loop_(loop),
      dialect_(setup.dialect),
      identify_(std::move(setup.identify)),
      registry_(loop, std::move(setup.registryFile)),
      ipc_(loop, std::move(setup.ipc), *this) {}

std::vector<IpcSession::Display> IpcSession::read() {
    std::uint64_t at = 0;
    const auto workspaces = ipc_.ask(IpcType::workspaces, {}, parseWorkspaces, [&] {
        at = events_;
        // It holds what the events so far told.
        if (std::exchange(tellingSpace_, false)) news_.space = false;
    });
    return take({workspaces, at});
}

const std::vector<IpcSession::Display>& IpcSession::displays() {
    ipc_.takeArrived();
    if (displaysAt_ != events_) read();
    return displays_;
}

std::vector<IpcSession::Display> IpcSession::take(const Told& told) {
    const std::vector<IpcWorkspaceReply>& workspaces = told.workspaces;
    readMonitorsIfStale(workspaces);
    std::vector<Display> displays = monitors_;

    std::vector<WorkspaceRegistry::LiveDisplay> live;
    for (const Display& display : displays) {
        auto& entry =
            live.emplace_back(WorkspaceRegistry::LiveDisplay{.uuid = display.uuid, .workspaces = {}});
        for (const IpcWorkspaceReply& workspace : workspaces)
            if (workspace.output == display.output.name)
                entry.workspaces.push_back({.handle = workspace.id, .name = workspace.name});
    }
    registry_.reconcile(live);

    connectors_.clear();
    for (Display& display : displays) {
        connectors_.emplace(display.uuid, display.output.name);
        for (const IpcWorkspaceReply& workspace : workspaces) {
            if (workspace.output != display.output.name || !workspace.visible) continue;
            if (const RegisteredDesktop* desktop = registry_.find(workspace.id))
                display.current = desktop->id;
            display.focused = workspace.focused;
        }
    }
    displays_ = displays;
    displaysAt_ = told.events;
    settleNames();
    return displays;
}

/// i3 tells of every change of its outputs. sway 1.7 doesn't, but a monitor that comes, goes or changes its
/// mode has its effect on what workspaces are left.
void IpcSession::readMonitorsIfStale(const std::vector<IpcWorkspaceReply>& workspaces) {
    std::map<std::string, Rect> shown;
    for (const IpcWorkspaceReply& workspace : workspaces)
        if (workspace.visible) shown[workspace.output] = workspace.rect;
    if (!monitorsStale_ && (dialect_ == IpcDialect::i3 || shown == outputsShown_)) return;
    monitorsStale_ = false; // an event that comes with the answer makes them stale again
    try {
        monitors_ = identified(ipc_.ask(IpcType::outputs, {}, parseOutputs));
        outputsShown_ = std::move(shown);
    } catch (...) {
        monitorsStale_ = true;
        throw;
    }
}

std::vector<IpcSession::Display> IpcSession::identified(std::vector<IpcOutputReply> outputs) const {
    std::ranges::sort(outputs, {}, [](const IpcOutputReply& output) {
        return std::tuple(output.rect.x, output.rect.y, output.name);
    });
    std::vector<Display> displays;
    std::set<std::string> taken;
    for (IpcOutputReply& output : outputs) {
        std::string uuid = identify_(output);
        if (!taken.insert(uuid).second) uuid += " " + output.name;
        displays.push_back({.uuid = std::move(uuid), .output = std::move(output), .current = {}});
    }
    return displays;
}

std::optional<RunningApp> IpcSession::frontmostApplication() {
    ipc_.takeArrived();
    return front_.read(ipc_);
}

void IpcSession::activate(SpaceID space, const DisplayID& display, const DisplayID* focused,
                          std::shared_ptr<std::optional<Told>> told, I3Ipc::OnOutcomes onOutcomes) {
    std::string commands = showing(space, display);
    if (focused && !text::equalsIgnoringCase(focused->uuid, display.uuid))
        if (const auto focus = focusing(*focused)) commands += "; " + *focus;
    const auto result = std::make_shared<std::optional<std::vector<IpcOutcome>>>();
    ipc_.run(commands, [result](const auto* outcomes) {
        if (outcomes) *result = *outcomes;
    });
    ipc_.askAhead(IpcType::workspaces, [this, result, told, onOutcomes](const std::string* answer) {
        if (answer) *told = Told{parseWorkspaces(*answer), events_};
        onOutcomes(answer && *result ? &**result : nullptr);
    });
}

std::optional<SpaceID> IpcSession::shownOn(const DisplayID& display, const Told& told) try {
    if (told.events != events_) return std::nullopt;
    for (const Display& each : take(told))
        if (text::equalsIgnoringCase(each.uuid, display.uuid)) return each.current;
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

std::string IpcSession::showing(SpaceID space, const DisplayID& display) const {
    const RegisteredDesktop* desktop = registry_.find(space);
    const auto focus = focusing(display);
    if (!desktop || !focus) {
        throw WindowManagerError(WindowManagerError::Case::refused, ipc_.windowManager(),
                                 desktop ? "it has no such output" : "it has no such workspace");
    }
    // Without the output in front, a workspace that is gone would be made on the focused one.
    return *focus + "; workspace --no-auto-back-and-forth " + quoted(dialect_, desktop->nextName());
}

std::optional<std::string> IpcSession::focusing(const DisplayID& display) const {
    const auto connector = std::ranges::find_if(
        connectors_, [&](const auto& entry) { return text::equalsIgnoringCase(entry.first, display.uuid); });
    if (connector == connectors_.end()) return std::nullopt;
    return "focus output " + quoted(dialect_, connector->second);
}

std::string IpcSession::renaming(const std::string& from, const std::string& to) const {
    return "rename workspace " + quoted(dialect_, from) + " to " + quoted(dialect_, to);
}

void IpcSession::noteChange() {
    news_.space = true;
    tellLater();
}

void IpcSession::publish(const std::vector<PublishedDesktop>& desktops) {
    if (registry_.setPublished(desktops)) noteChange();
    settleNames();
}

/// Before the first reading of a run nobody knows which workspaces there are.
void IpcSession::settleNames() {
    if (!registry_.hasReading() || !ipc_.connected()) return;
    const auto makeName = [this](const std::string& ownName, const std::string& title,
                                 const std::set<std::string>& taken) {
        return titledWorkspace(dialect_, ownName, title, taken);
    };
    for (const WorkspaceRegistry::Rename& rename : registry_.settleNames(makeName)) {
        try {
            ipc_.run(renaming(rename.from, rename.to), [this,
                                                        rename](const std::vector<IpcOutcome>* outcomes) {
                if (!outcomes || (!outcomes->empty() && outcomes->front().success)) return;
                if (!registry_.renameRefused(rename)) return;
                log("Lumnara " + ipc_.windowManager() + ": \"" + rename.from + "\" was not renamed to \"" +
                    rename.to + "\": " + (outcomes->empty() ? "no answer" : outcomes->front().error));
            });
        } catch (const WindowManagerError&) {
            // Lost meanwhile; what was asked is owed again when a window manager is there.
        }
    }
}

void IpcSession::onConnected() {
    registry_.beginRun();
    monitorsStale_ = true;
    ++events_;
    front_.forget();
    news_.space = news_.screens = news_.bindingsLost = true;
    tellLater();
}

void IpcSession::onLost() {
    ++events_;
    front_.forget();
    noteChange();
}

void IpcSession::onEvent(const IpcFrame& event) {
    if (event.type == static_cast<std::uint32_t>(IpcEvent::window))
        return front_.noteWindow(parseWindowEvent(event.payload));
    ++events_;
    switch (static_cast<IpcEvent>(event.type)) {
    case IpcEvent::window: return;
    case IpcEvent::workspace: onWorkspaceEvent(parseWorkspaceEvent(event.payload)); break;
    case IpcEvent::output:
        monitorsStale_ = true;
        news_.screens = true;
        break;
    case IpcEvent::binding: news_.bindingsRun.push_back(parseBindingEvent(event.payload)); break;
    case IpcEvent::shutdown:
        // The end of the connection follows.
        return;
    }
    tellLater();
}

void IpcSession::onWorkspaceEvent(const IpcWorkspaceEvent& event) {
    if (event.change == "rename")
        registry_.renamed(event.id, event.name);
    else if (event.change == "init" || event.change == "empty")
        registry_.released(event.id);
    else if (event.change == "reload")
        news_.bindingsLost = true;
    else if (event.change == "focus" && event.id != 0)
        front_.workspaceFocused(event.focus);
    else if (event.change == "focus")
        front_.forget();
    news_.space = true;
}

void IpcSession::tellLater() {
    if (!telling_ || !telling_->pending())
        telling_ = std::make_unique<async::Delayed>(loop_, 0, [this] { tell(); });
}

void IpcSession::tell() {
    const News news = std::exchange(news_, {});
    if (news.bindingsLost) bindingsLost_.emit();
    for (const std::string& command : news.bindingsRun) bindingRan_.emit(command);
    if (news.screens) changed_.emit(WorkspaceEvent::screenParametersDidChange);
    // The first reading on this holds what else has come by then.
    tellingSpace_ = news.space;
    if (news.space) changed_.emit(WorkspaceEvent::activeSpaceDidChange);
    tellingSpace_ = false;
}

} // namespace lumnara
