#pragma once

#include "core/seams/KeyCode.h"

#include <functional>
#include <string>

namespace lumnara {

struct Shortcut {
    KeyCode key{};
    ModifierFlags modifiers;
    bool operator==(const Shortcut&) const = default;
};

enum class ShortcutStatus {
    active,       ///< the callback will come
    usedBySystem, ///< another program or the window manager holds the key
    unavailable   ///< this session has no such key, or no way to ask for it
};

/// System-wide shortcuts. Owned by Platform, called on the main thread, callbacks on the main thread.
/// When the callback runs the platform has released the keyboard, so a surface may grab it at once.
/// Registrations survive a restart of the window manager and a change of the keyboard map.
class GlobalShortcuts {
public:
    virtual ~GlobalShortcuts() = default;
    /// Registers, or replaces, the shortcut known under `name` ("board").
    virtual ShortcutStatus bind(const std::string& name, const Shortcut& shortcut,
                                std::function<void()> onPressed) = 0;
    virtual void unbind(const std::string& name) = 0;
};

} // namespace lumnara
