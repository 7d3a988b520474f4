#pragma once

#include "core/seams/KeyCode.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace lumnara {

/// The keyboard map of an X server as read at one moment, and how the system's own key vocabulary reads
/// in it.
class X11KeyboardMap {
public:
    /// `keysyms`: `keysymsPerKey` keysyms for each key code from `firstKey` on, in the core protocol's order
    /// (two levels of the first layout, two of the second, then further levels). `modifierKeys`: the key
    /// codes of each of the eight modifiers, as many for each, 0 where there is none.
    X11KeyboardMap(std::uint8_t firstKey, std::size_t keysymsPerKey, std::vector<std::uint32_t> keysyms,
                   const std::vector<std::uint8_t>& modifierKeys);

    /// The key that produces the character or function, on any level or layout, the lowest first: on a
    /// French keyboard the digits are shifted and still on their keys. On a map without the character at
    /// all (Cyrillic alone) the key that has it on an American keyboard.
    std::optional<std::uint8_t> keyCode(KeyCode key) const;
    /// The core protocol's modifier mask.
    std::uint16_t mask(ModifierFlags flags) const;
    /// The modifier that Num Lock holds; 0 where there is none.
    std::uint16_t numLockMask() const { return numLock_; }

private:
    std::optional<std::uint8_t> keyCodeOf(std::uint32_t keysym) const;
    std::uint16_t modifierOf(std::uint32_t keysym, const std::vector<std::uint8_t>& modifierKeys) const;

    std::uint8_t firstKey_;
    std::size_t keysymsPerKey_;
    std::vector<std::uint32_t> keysyms_;
    std::uint16_t numLock_ = 0;
    std::uint16_t alt_ = 0;
    std::uint16_t super_ = 0;
};

} // namespace lumnara
