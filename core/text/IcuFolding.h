#pragma once

#include <string>
#include <string_view>

namespace lumnara::text {

/// Folds a whole text by ICU, in microseconds: the source of the page table, and the way of the texts
/// that the table can't fold point by point.
std::string icuFold(std::string_view text);

/// Unicode normalisation form C.
std::string icuComposed(std::string_view text);

} // namespace lumnara::text
