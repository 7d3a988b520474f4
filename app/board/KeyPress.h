#pragma once

#include "core/seams/KeyCode.h"

#include <optional>
#include <string>

namespace lumnara {

/// A key that went down on a surface.
struct KeyPress {
    /// Nothing for a key that KeyCode doesn't name.
    std::optional<KeyCode> key;
    ModifierFlags modifiers;
    /// What the key types under the keyboard's layout, in UTF-8; empty for a key that types nothing.
    std::string text;
    /// Whether the key is held and the keyboard repeats it.
    bool repeats = false;

    bool operator==(const KeyPress&) const = default;
};

} // namespace lumnara
