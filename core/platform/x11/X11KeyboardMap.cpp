#include "core/platform/x11/X11KeyboardMap.h"

#include <X11/keysym.h>
#include <algorithm>
#include <array>
#include <xcb/xproto.h>

namespace lumnara {

namespace {

struct KeyRow {
    KeyCode key;
    std::uint32_t keysym;
    /// The key code on an American keyboard under the evdev rules, which every current X server has.
    std::uint8_t position;
};

constexpr auto keyRows = std::to_array<KeyRow>({
    {KeyCode::a, XK_a, 38},
    {KeyCode::b, XK_b, 56},
    {KeyCode::c, XK_c, 54},
    {KeyCode::d, XK_d, 40},
    {KeyCode::e, XK_e, 26},
    {KeyCode::f, XK_f, 41},
    {KeyCode::g, XK_g, 42},
    {KeyCode::h, XK_h, 43},
    {KeyCode::i, XK_i, 31},
    {KeyCode::j, XK_j, 44},
    {KeyCode::k, XK_k, 45},
    {KeyCode::l, XK_l, 46},
    {KeyCode::m, XK_m, 58},
    {KeyCode::n, XK_n, 57},
    {KeyCode::o, XK_o, 32},
    {KeyCode::p, XK_p, 33},
    {KeyCode::q, XK_q, 24},
    {KeyCode::r, XK_r, 27},
    {KeyCode::s, XK_s, 39},
    {KeyCode::t, XK_t, 28},
    {KeyCode::u, XK_u, 30},
    {KeyCode::v, XK_v, 55},
    {KeyCode::w, XK_w, 25},
    {KeyCode::x, XK_x, 53},
    {KeyCode::y, XK_y, 29},
    {KeyCode::z, XK_z, 52},
    {KeyCode::digit1, XK_1, 10},
    {KeyCode::digit2, XK_2, 11},
    {KeyCode::digit3, XK_3, 12},
    {KeyCode::digit4, XK_4, 13},
    {KeyCode::digit5, XK_5, 14},
    {KeyCode::digit6, XK_6, 15},
    {KeyCode::digit7, XK_7, 16},
    {KeyCode::digit8, XK_8, 17},
    {KeyCode::digit9, XK_9, 18},
    {KeyCode::digit0, XK_0, 19},
    {KeyCode::comma, XK_comma, 59},
    {KeyCode::returnKey, XK_Return, 36},
    {KeyCode::tab, XK_Tab, 23},
    {KeyCode::space, XK_space, 65},
    {KeyCode::deleteKey, XK_BackSpace, 22},
    {KeyCode::escape, XK_Escape, 9},
    {KeyCode::keypadEnter, XK_KP_Enter, 104},
    {KeyCode::home, XK_Home, 110},
    {KeyCode::pageUp, XK_Page_Up, 112},
    {KeyCode::forwardDelete, XK_Delete, 119},
    {KeyCode::end, XK_End, 115},
    {KeyCode::pageDown, XK_Page_Down, 117},
    {KeyCode::left, XK_Left, 113},
    {KeyCode::right, XK_Right, 114},
    {KeyCode::down, XK_Down, 116},
    {KeyCode::up, XK_Up, 111},
    {KeyCode::contextMenu, XK_Menu, 135},
});

constexpr std::size_t modifierCount = 8;

} // namespace

X11KeyboardMap::X11KeyboardMap(std::uint8_t firstKey, std::size_t keysymsPerKey,
                               std::vector<std::uint32_t> keysyms,
                               const std::vector<std::uint8_t>& modifierKeys)
    : firstKey_(firstKey),
      keysymsPerKey_(keysymsPerKey),
      keysyms_(std::move(keysyms)) {
    const auto firstOf = [&](std::initializer_list<std::uint32_t> candidates, std::uint16_t fallback) {
        for (const auto keysym : candidates)
            if (const auto modifier = modifierOf(keysym, modifierKeys)) return modifier;
        return fallback;
    };
    numLock_ = firstOf({XK_Num_Lock}, 0);
    alt_ = firstOf({XK_Alt_L, XK_Alt_R, XK_Meta_L}, XCB_MOD_MASK_1);
    super_ = firstOf({XK_Super_L, XK_Super_R}, XCB_MOD_MASK_4);
}

std::optional<std::uint8_t> X11KeyboardMap::keyCode(KeyCode key) const {
    const auto row =
        std::find_if(keyRows.begin(), keyRows.end(), [key](const KeyRow& r) { return r.key == key; });
    if (row == keyRows.end()) return std::nullopt;
    if (const auto code = keyCodeOf(row->keysym)) return code;
    const bool onKeyboard = row->position >= firstKey_ && keysymsPerKey_ > 0 &&
                            row->position < firstKey_ + keysyms_.size() / keysymsPerKey_;
    return onKeyboard ? std::optional(row->position) : std::nullopt;
}

std::uint16_t X11KeyboardMap::mask(ModifierFlags flags) const {
    unsigned mask = 0;
    if (flags.shift) mask |= XCB_MOD_MASK_SHIFT;
    if (flags.control) mask |= XCB_MOD_MASK_CONTROL;
    if (flags.option) mask |= alt_;
    if (flags.command) mask |= super_;
    return static_cast<std::uint16_t>(mask);
}

std::optional<std::uint8_t> X11KeyboardMap::keyCodeOf(std::uint32_t keysym) const {
    for (std::size_t level = 0; level < keysymsPerKey_; ++level)
        for (std::size_t at = level; at < keysyms_.size(); at += keysymsPerKey_)
            if (keysyms_[at] == keysym) return static_cast<std::uint8_t>(firstKey_ + at / keysymsPerKey_);
    return std::nullopt;
}

std::uint16_t X11KeyboardMap::modifierOf(std::uint32_t keysym,
                                         const std::vector<std::uint8_t>& modifierKeys) const {
    const std::size_t keysPerModifier = modifierKeys.size() / modifierCount;
    for (std::size_t at = 0; at < keysPerModifier * modifierCount; ++at) {
        if (modifierKeys[at] < firstKey_) continue;
        const auto first = (modifierKeys[at] - firstKey_) * keysymsPerKey_;
        for (auto i = first; i < std::min(first + keysymsPerKey_, keysyms_.size()); ++i)
            if (keysyms_[i] == keysym) return static_cast<std::uint16_t>(1U << at / keysPerModifier);
    }
    return 0;
}

} // namespace lumnara
