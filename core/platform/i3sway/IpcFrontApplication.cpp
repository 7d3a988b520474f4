#include "core/platform/i3sway/IpcFrontApplication.h"

namespace lumnara {

std::optional<RunningApp> IpcFrontApplication::read(I3Ipc& ipc) {
    if (isKnown_) return focus_.application;
    const std::uint64_t before = told_;
    const IpcFocus answer = ipc.ask(IpcType::tree, {}, parseFocus);
    // What was told along with the answer may be newer.
    if (told_ == before) set(answer);
    return isKnown_ ? focus_.application : answer.application;
}

void IpcFrontApplication::forget() {
    isKnown_ = false;
    ++told_;
}

void IpcFrontApplication::noteWindow(const IpcWindowEvent& event) {
    if (event.change == "focus") return set(event.window);
    if (event.window.container != focus_.container) return;
    // Where the keyboard goes then is told only if a window gets it.
    if (event.change == "close") return set({});
    // Perhaps to another workspace, and the keyboard not with it.
    if (event.change == "move") forget();
}

void IpcFrontApplication::set(const IpcFocus& focus) {
    focus_ = focus;
    isKnown_ = true;
    ++told_;
}

} // namespace lumnara
