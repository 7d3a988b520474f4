#pragma once

#include <string_view>
#include <vector>

namespace lumnara {

/// The words of a text: its pieces between blanks, without empty ones. A blank with a mark on it is part of
/// a word. `out` is overwritten and keeps its capacity.
void splitWords(std::string_view text, std::vector<std::string_view>& out);

} // namespace lumnara
