#pragma once

#include <string_view>

/// How alike two texts are, counted in user-perceived characters; canonically equivalent ones are equal.
/// Pure functions; any thread.
namespace lumnara::Similarity {

/// The fewest insertions, deletions, replacements and swaps of neighbours, where no part is edited twice
/// (optimal string alignment).
int distance(std::string_view a, std::string_view b);

/// 1 minus the distance divided by the longer length; 1 for two empty texts.
double distanceRatio(std::string_view a, std::string_view b);

/// Jaro's similarity, raised by a tenth of what it lacks for each of up to four characters of common
/// beginning, however low it is.
double jaroWinkler(std::string_view a, std::string_view b);

/// The words that both have, divided by the distinct words of the one that has more; 0 without words.
double tokenOverlap(std::string_view a, std::string_view b);

} // namespace lumnara::Similarity
