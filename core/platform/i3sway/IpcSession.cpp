#include "core/platform/i3sway/IpcSession.h"

#include "core/base/Log.h"
#include "core/text/Text.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace lumnara {

namespace {

/// Seconds for which an answer counts that was asked ahead: it is meant for what runs next.
constexpr double aheadFreshness = 0.005;

} // namespace

IpcSession::IpcSession(async::Loop& loop, Setup setup)
    : loop_(loop),
      dialect_(setup.dialect),
      identify_(std::move(setup.identify)),
      registry_(loop, std::move(setup.registryFile)),
      ipc_(loop, std::move(setup.ipc), *this) {}

std::vector<IpcSession::Display> IpcSession::read() {
    // In this order: an answer comes after the events of what happened before it.
    const std::vector<IpcWorkspaceReply> workspaces = readWorkspaces();
    // i3 tells of every change of its outputs, and sway doesn't.
    if (displaysStale_ || dialect_ != IpcDialect::i3) readDisplays();
    std::vector<Display> displays = displays_;

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
    settleNames();
    return displays;
}

std::vector<IpcWorkspaceReply> IpcSession::readWorkspaces() {
    const auto told = std::exchange(toldAhead_, std::nullopt);
    if (told && async::secondsOf(loop_.now() - told->at) <= aheadFreshness) return told->workspaces;
    return ipc_.ask(IpcType::workspaces, {}, parseWorkspaces);
}

void IpcSession::readDisplays() {
    displaysStale_ = false; // an event that comes with the answer makes it stale again
    try {
        displays_ = identified(ipc_.ask(IpcType::outputs, {}, parseOutputs));
    } catch (...) {
        displaysStale_ = true;
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

void IpcSession::activate(SpaceID space, const DisplayID& display, const DisplayID* focused,
                          I3Ipc::OnOutcomes onOutcomes) {
    std::string commands = showing(space, display);
    if (focused && !text::equalsIgnoringCase(focused->uuid, display.uuid))
        if (const auto focus = focusing(*focused)) commands += "; " + *focus;
    const auto result = std::make_shared<std::optional<std::vector<IpcOutcome>>>();
    ipc_.run(commands, [result](const auto* outcomes) {
        if (outcomes) *result = *outcomes;
    });
    ipc_.askAhead(IpcType::workspaces, [this, result, onOutcomes](const std::string* answer) {
        if (answer) toldAhead_ = ToldAhead{parseWorkspaces(*answer), loop_.now()};
        onOutcomes(answer && *result ? &**result : nullptr);
    });
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
    displaysStale_ = true;
    news_.space = news_.screens = news_.bindingsLost = true;
    tellLater();
}

void IpcSession::onLost() { noteChange(); }

void IpcSession::onEvent(const IpcFrame& event) {
    toldAhead_.reset();
    switch (static_cast<IpcEvent>(event.type)) {
    case IpcEvent::workspace: onWorkspaceEvent(parseWorkspaceEvent(event.payload)); break;
    case IpcEvent::output:
        displaysStale_ = true;
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
    if (news.space) changed_.emit(WorkspaceEvent::activeSpaceDidChange);
}

} // namespace lumnara
