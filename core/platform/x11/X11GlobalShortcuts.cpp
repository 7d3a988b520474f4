#include "core/platform/x11/X11GlobalShortcuts.h"

#include "core/base/Failure.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

/// Between looks whether a held key is up again; shorter than any pause between two presses of a finger.
constexpr double releaseWatchPeriod = 0.02;
/// No keyboard repeats a key earlier than this after it went down, in milliseconds of the server's clock.
constexpr std::uint32_t earliestRepeat = 100;

} // namespace

X11GlobalShortcuts::X11GlobalShortcuts(std::shared_ptr<X11Connection> connection)
    : connection_(std::move(connection)) {
    auto& x = *connection_;
    subscriptions_.push_back(x.keyPressed.subscribe([this](const auto& event) { press(event); }));
    subscriptions_.push_back(x.keyboardChanged.subscribe([this] { keyboardChanged_ = true; }));
    subscriptions_.push_back(x.batchEnded.subscribe([this] {
        if (std::exchange(keyboardChanged_, false)) followKeyboard();
    }));
    try {
        readKeyboard();
    } catch (const Failure&) {
        // Without a server every shortcut is unavailable.
    }
}

X11GlobalShortcuts::~X11GlobalShortcuts() {
    while (!bindings_.empty()) unbind(bindings_.begin()->first);
}

ShortcutStatus X11GlobalShortcuts::bind(const std::string& name, const Shortcut& shortcut,
                                        std::function<void()> onPressed) {
    unbind(name);
    auto& binding = bindings_[name] = {shortcut, std::move(onPressed), std::nullopt};
    return grab(binding);
}

void X11GlobalShortcuts::unbind(const std::string& name) {
    const auto found = bindings_.find(name);
    if (found == bindings_.end()) return;
    release(found->second);
    bindings_.erase(found);
}

std::optional<X11GlobalShortcuts::Grab> X11GlobalShortcuts::grabOf(const Shortcut& shortcut) const {
    const auto keyCode = keyboard_ ? keyboard_->keyCode(shortcut.key) : std::nullopt;
    if (!keyCode) return std::nullopt;
    return Grab{*keyCode, keyboard_->mask(shortcut.modifiers), keyboard_->numLockMask()};
}

ShortcutStatus X11GlobalShortcuts::grab(Binding& binding) {
    const auto wanted = grabOf(binding.shortcut);
    if (!wanted) return ShortcutStatus::unavailable;
    std::vector<xcb_void_cookie_t> cookies;
    for (const auto locks : lockCombinations(*wanted))
        cookies.push_back(xcb_grab_key_checked(connection_->xcb(), 0, connection_->root(),
                                               wanted->modifiers | locks, wanted->keyCode,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    try {
        connection_->roundTrip();
    } catch (const Failure&) {
        return ShortcutStatus::unavailable;
    }
    // Every answer has to be taken, also behind the first refusal.
    const auto refused = std::count_if(cookies.begin(), cookies.end(),
                                       [this](const auto cookie) { return connection_->failed(cookie); });
    if (refused > 0) {
        ungrab(*wanted);
        return ShortcutStatus::usedBySystem;
    }
    binding.grab = wanted;
    return ShortcutStatus::active;
}

void X11GlobalShortcuts::release(Binding& binding) {
    const auto given = std::exchange(binding.grab, std::nullopt);
    if (!given) return;
    const bool needed = std::any_of(bindings_.begin(), bindings_.end(),
                                    [&](const auto& entry) { return entry.second.grab == given; });
    if (!needed) ungrab(*given);
}

void X11GlobalShortcuts::ungrab(const Grab& grab) {
    for (const auto locks : lockCombinations(grab))
        xcb_ungrab_key(connection_->xcb(), grab.keyCode, connection_->root(), grab.modifiers | locks);
    xcb_flush(connection_->xcb());
}

std::vector<std::uint16_t> X11GlobalShortcuts::lockCombinations(const Grab& grab) {
    if (grab.numLock == 0) return {0, XCB_MOD_MASK_LOCK};
    return {0, XCB_MOD_MASK_LOCK, grab.numLock, static_cast<std::uint16_t>(XCB_MOD_MASK_LOCK | grab.numLock)};
}

void X11GlobalShortcuts::readKeyboard() {
    auto& x = *connection_;
    const auto* setup = xcb_get_setup(x.xcb());
    const auto keys = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto mappingCookie = xcb_get_keyboard_mapping(x.xcb(), setup->min_keycode, keys);
    const auto modifierCookie = xcb_get_modifier_mapping(x.xcb());
    const auto mapping = x.reply<xcb_get_keyboard_mapping_reply_t>(mappingCookie);
    const auto modifiers = x.reply<xcb_get_modifier_mapping_reply_t>(modifierCookie);
    if (!mapping || !modifiers) return;
    const auto* keysyms = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const auto* modifierKeys = xcb_get_modifier_mapping_keycodes(modifiers.get());
    keyboard_.emplace(
        setup->min_keycode, mapping->keysyms_per_keycode,
        std::vector(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(mapping.get())),
        std::vector(modifierKeys, modifierKeys + xcb_get_modifier_mapping_keycodes_length(modifiers.get())));
}

/// The server announces a change each time another keyboard is typed on, most often with the same keys: a
/// grab that stays right is kept, or the very press that made the change would be lost.
void X11GlobalShortcuts::followKeyboard() {
    try {
        readKeyboard();
    } catch (const Failure&) {
        return;
    }
    const auto stays = [this](const Binding& binding) {
        return binding.grab && binding.grab == grabOf(binding.shortcut);
    };
    for (auto& [name, binding] : bindings_)
        if (!stays(binding)) release(binding);
    for (auto& [name, binding] : bindings_)
        if (!binding.grab) grab(binding);
}

void X11GlobalShortcuts::press(const xcb_key_press_event_t& event) {
    // The grab that this press has set off would keep a surface from the keyboard. The round trip makes
    // sure that the server has dropped it before anybody else asks.
    xcb_ungrab_keyboard(connection_->xcb(), XCB_CURRENT_TIME);
    try {
        connection_->roundTrip();
    } catch (const Failure&) {
        return;
    }
    if (!keyboard_ || isRepeat(event)) return;
    held_ = HeldKey{event.detail, event.time,
                    std::make_unique<async::Repeating>(connection_->loop(), releaseWatchPeriod,
                                                       [this] { lookWhetherReleased(); })};
    constexpr unsigned allModifiers = 0xFF;
    const unsigned locks = XCB_MOD_MASK_LOCK | keyboard_->numLockMask();
    const Grab pressed{event.detail, static_cast<std::uint16_t>(event.state & allModifiers & ~locks),
                       keyboard_->numLockMask()};
    std::vector<std::function<void()>> calls;
    for (const auto& [name, binding] : bindings_)
        if (binding.grab == pressed) calls.push_back(binding.onPressed);
    for (const auto& call : calls) call();
}

bool X11GlobalShortcuts::isRepeat(const xcb_key_press_event_t& event) const {
    // The release goes to whoever has the focus, so a repeated press looks like a first one.
    return held_ && held_->keyCode == event.detail && event.time - held_->since >= earliestRepeat;
}

void X11GlobalShortcuts::lookWhetherReleased() {
    try {
        const auto keys = connection_->reply<xcb_query_keymap_reply_t>(xcb_query_keymap(connection_->xcb()));
        const bool down = keys && (keys->keys[held_->keyCode / 8] >> held_->keyCode % 8 & 1) != 0;
        if (!down) held_.reset();
    } catch (const Failure&) {
        held_.reset();
    }
}

} // namespace lumnara
