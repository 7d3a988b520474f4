#include "core/platform/i3sway/SwayShortcuts.h"

#include "core/platform/i3sway/SwayKeys.h"

#include <utility>

namespace lumnara {

SwayShortcuts::SwayShortcuts(IpcSession& session)
    : session_(session),
      lost_(session.bindingsLost().subscribe([this] { giveAll(); })),
      ran_(session.bindingRan().subscribe([this](const std::string& command) { ran(command); })) {}

SwayShortcuts::~SwayShortcuts() {
    for (auto& [name, binding] : bindings_) take(binding);
}

ShortcutStatus SwayShortcuts::bind(const std::string& name, const Shortcut& shortcut,
                                   std::function<void()> onPressed) {
    unbind(name);
    const auto keys = swayKeys(shortcut);
    if (!keys) return ShortcutStatus::unavailable;
    Binding binding{.keys = *keys,
                    .command = "nop lumnara " + std::to_string(nextNumber_++),
                    .onPressed = std::move(onPressed)};
    const ShortcutStatus status = give(binding);
    if (status == ShortcutStatus::active) bindings_.emplace(name, std::move(binding));
    return status;
}

void SwayShortcuts::unbind(const std::string& name) {
    const auto found = bindings_.find(name);
    if (found == bindings_.end()) return;
    take(found->second);
    bindings_.erase(found);
}

/// While sway is away a shortcut counts as active: it is given when sway is back.
ShortcutStatus SwayShortcuts::give(Binding& binding) try {
    const std::string configuration = session_.ipc().ask(IpcType::config, {}, parseConfig);
    if (swayBoundKeys(configuration).contains(swayKeysKey(binding.keys))) return ShortcutStatus::usedBySystem;
    const std::string command = "bindsym --no-warn " + binding.keys + " " + binding.command;
    const std::vector<IpcOutcome> outcomes = session_.ipc().ask(IpcType::command, command, parseOutcomes);
    binding.bound = !outcomes.empty() && outcomes.front().success;
    return binding.bound ? ShortcutStatus::active : ShortcutStatus::unavailable;
} catch (const WindowManagerError&) {
    return ShortcutStatus::active;
}

/// Waits for the answer: sway drops what it hasn't read when a connection closes behind it.
void SwayShortcuts::take(Binding& binding) {
    if (!std::exchange(binding.bound, false)) return;
    try {
        session_.ipc().ask(IpcType::command, "unbindsym " + binding.keys, parseOutcomes);
    } catch (const WindowManagerError&) {
        // With sway went its bindings.
    }
}

void SwayShortcuts::giveAll() {
    for (auto& [name, binding] : bindings_) {
        binding.bound = false;
        give(binding);
    }
}

void SwayShortcuts::ran(const std::string& command) {
    for (const auto& [name, binding] : bindings_) {
        if (binding.command != command) continue;
        const auto onPressed = binding.onPressed; // it may unbind itself
        onPressed();
        return;
    }
}

} // namespace lumnara
