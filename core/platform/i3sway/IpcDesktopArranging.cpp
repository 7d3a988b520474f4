#include "core/platform/i3sway/IpcDesktopArranging.h"

#include "core/async/Task.h"
#include "core/platform/i3sway/IpcAnswer.h"
#include "core/platform/i3sway/WorkspaceOrder.h"

#include <algorithm>
#include <fmt/core.h>
#include <fmt/ranges.h>

namespace lumnara {

namespace {

/// A window that comes in between keeps its workspace there.
constexpr int emptyings = 3;

} // namespace

async::Task<> IpcDesktopArranging::add(DisplayID display) {
    session_.registry().create(display.uuid);
    session_.noteChange();
    co_return;
}

async::Task<> IpcDesktopArranging::remove(SpaceID id, SpaceID heir) {
    for (int round = 0; round < emptyings; ++round) {
        const std::string commands = emptying(id, heir);
        if (commands.empty()) break;
        const auto answer = std::make_shared<IpcAnswer>();
        session_.ipc().run(commands, IpcAnswer::into(answer));
        co_await IpcAnswer::arrival(answer, windowManager());
    }
    session_.read();
    session_.registry().remove(id);
    session_.noteChange();
}

/// The commands that take a desktop's workspace away, after a fresh reading; empty when it has none.
std::string IpcDesktopArranging::emptying(SpaceID id, SpaceID heir) {
    const std::vector<IpcSession::Display> displays = session_.read();
    WorkspaceRegistry& registry = session_.registry();
    const RegisteredDesktop* desktop = registry.find(id);
    const RegisteredDesktop* next = registry.find(heir);
    if (!desktop || !desktop->handle || !next) return {};
    const std::int64_t handle = *desktop->handle;
    if (!next->handle) {
        // It becomes the heir's workspace, with everything on it and where it shows.
        const std::string command = session_.renaming(desktop->nextName(), next->nextName());
        registry.released(handle);
        return command;
    }
    std::vector<std::string> commands;
    for (const IpcWorkspaceContents& contents : session_.ipc().ask(IpcType::tree, {}, parseContents))
        if (contents.id == handle)
            for (const std::int64_t container : contents.containers)
                commands.push_back(
                    fmt::format("[con_id={}] move --no-auto-back-and-forth container to workspace {}",
                                container, quoted(session_.dialect(), next->nextName())));
    const auto shown = std::ranges::find(displays, std::optional(id), &IpcSession::Display::current);
    if (shown != displays.end()) {
        commands.push_back(session_.showing(heir, {shown->uuid}));
        const auto focused = std::ranges::find(displays, true, &IpcSession::Display::focused);
        if (focused != displays.end() && focused != shown)
            commands.push_back(session_.focusing({focused->uuid}).value_or("nop"));
    }
    return fmt::format("{}", fmt::join(commands, "; "));
}

async::Task<> IpcDesktopArranging::arrange(DisplayID, std::vector<SpaceID> order) {
    const auto renames = session_.registry().arrange(order, session_.dialect());
    session_.noteChange();
    if (renames.empty()) co_return;
    std::vector<std::string> commands;
    for (const WorkspaceRegistry::Rename& rename : renames)
        commands.push_back(session_.renaming(rename.from, rename.to));
    const auto answer = std::make_shared<IpcAnswer>();
    const auto take = [this, renames](const std::vector<IpcOutcome>* outcomes) {
        if (outcomes) session_.registry().arranged(renames);
    };
    session_.ipc().run(fmt::format("{}", fmt::join(commands, "; ")), IpcAnswer::into(answer, take));
    co_await IpcAnswer::arrival(answer, windowManager());
}

std::vector<SpaceID> IpcDesktopArranging::keepable(std::vector<SpaceID> desired) const {
    std::vector<const RegisteredDesktop*> desktops;
    for (const SpaceID id : desired)
        if (const RegisteredDesktop* desktop = session_.registry().find(id)) desktops.push_back(desktop);
    return WorkspaceOrder::keepable(desktops);
}

std::string IpcDesktopArranging::keptOrderRule() const {
    return fmt::format("{} sorts desktops by the number that their names begin with, and puts those without "
                       "one behind the others.",
                       windowManager());
}

} // namespace lumnara
