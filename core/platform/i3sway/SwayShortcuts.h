#pragma once

#include "core/platform/i3sway/IpcSession.h"
#include "core/seams/GlobalShortcuts.h"

#include <map>

namespace lumnara {

/// Shortcuts as key bindings of sway, made at run time: each runs a command that does nothing, and sway tells
/// that it ran. sway puts a new binding over an old one without a word and can't be asked who holds a key; so
/// what the user's configuration file binds is read from it, and left alone.
class SwayShortcuts : public GlobalShortcuts {
public:
    explicit SwayShortcuts(IpcSession& session);
    SwayShortcuts(const SwayShortcuts&) = delete;
    ~SwayShortcuts() override;

    ShortcutStatus bind(const std::string& name, const Shortcut& shortcut,
                        std::function<void()> onPressed) override;
    void unbind(const std::string& name) override;

private:
    struct Binding {
        std::string keys;
        /// What the binding runs; sway tells it back.
        std::string command;
        std::function<void()> onPressed;
        /// sway has it.
        bool bound = false;
    };

    ShortcutStatus give(Binding& binding);
    void take(Binding& binding);
    void giveAll();
    void ran(const std::string& command);

    IpcSession& session_;
    std::map<std::string, Binding> bindings_;
    int nextNumber_ = 1;
    async::Subscription lost_;
    async::Subscription ran_;
};

} // namespace lumnara
