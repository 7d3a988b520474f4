#pragma once

#include "core/async/Timer.h"
#include "core/platform/x11/X11Connection.h"
#include "core/platform/x11/X11KeyboardMap.h"
#include "core/seams/GlobalShortcuts.h"

#include <map>
#include <memory>
#include <optional>

namespace lumnara {

/// Shortcuts by passive key grabs on the root window. A press calls back once, however long it is held.
class X11GlobalShortcuts : public GlobalShortcuts {
public:
    explicit X11GlobalShortcuts(std::shared_ptr<X11Connection> connection);
    ~X11GlobalShortcuts() override;

    ShortcutStatus bind(const std::string& name, const Shortcut& shortcut,
                        std::function<void()> onPressed) override;
    void unbind(const std::string& name) override;

private:
    /// What the X server grabs: a key with exactly these modifiers, whatever the locks.
    struct Grab {
        std::uint8_t keyCode = 0;
        std::uint16_t modifiers = 0;
        std::uint16_t numLock = 0;
        bool operator==(const Grab&) const = default;
    };
    struct Binding {
        Shortcut shortcut;
        std::function<void()> onPressed;
        /// Nothing while the key can't be had.
        std::optional<Grab> grab;
    };
    /// A key that went down and has not been seen up yet.
    struct HeldKey {
        std::uint8_t keyCode = 0;
        xcb_timestamp_t since = 0;
        std::unique_ptr<async::Repeating> watch;
    };

    /// What a shortcut is on this keyboard; nothing if the keyboard lacks the key.
    std::optional<Grab> grabOf(const Shortcut& shortcut) const;
    ShortcutStatus grab(Binding& binding);
    /// Gives the key back unless another binding needs it too.
    void release(Binding& binding);
    void ungrab(const Grab& grab);
    static std::vector<std::uint16_t> lockCombinations(const Grab& grab);
    void readKeyboard();
    void followKeyboard();
    void press(const xcb_key_press_event_t& event);
    bool isRepeat(const xcb_key_press_event_t& event) const;
    void lookWhetherReleased();

    std::shared_ptr<X11Connection> connection_;
    std::optional<X11KeyboardMap> keyboard_;
    std::map<std::string, Binding> bindings_;
    std::optional<HeldKey> held_;
    bool keyboardChanged_ = false;
    std::vector<async::Subscription> subscriptions_;
};

} // namespace lumnara
