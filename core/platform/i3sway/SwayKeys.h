#pragma once

#include "core/seams/GlobalShortcuts.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace lumnara {

/// A shortcut as sway's "bindsym" writes it ("Mod1+Shift+space"); nothing for a key that has no symbol.
std::optional<std::string> swayKeys(const Shortcut& shortcut);

/// The key under which two spellings of a combination are one: modifiers in a fixed order, no case.
std::string swayKeysKey(std::string_view combination);

/// The combinations, by swayKeysKey, that a configuration binds outside of modes. Follows "set" and blocks;
/// what it includes, and keys by number ("bindcode"), are not seen.
std::set<std::string> swayBoundKeys(std::string_view configuration);

} // namespace lumnara
