#pragma once

/// The formulas behind the measures, once for single numbers and for lanes of them: every reading of the
/// rules rounds alike, to the last bit.
namespace lumnara::Measures {

constexpr double overlapWeight = 0.95;
constexpr int longestPrefix = 4;

/// How many places two equal characters may lie apart.
constexpr int jaroWindow(int longer) { return longer < 2 ? 0 : longer / 2 - 1; }

/// Jaro and Winkler's similarity of texts of `a` and `b` characters that have `matched` (at least one) in
/// common, `transposed` of them out of order, and begin with `prefix` equal ones.
///
/// Always inlined: lanes can't be handed to a function that was compiled for narrower vectors than its
/// caller.
template <class Number>
[[gnu::always_inline]] inline Number jaroWinkler(double a, double b, Number matched, Number transposed,
                                                 Number prefix) {
    const Number jaro = (matched / a + matched / b + (matched - 0.5 * transposed) / matched) / 3.0;
    return jaro + (prefix * 0.1) * (1.0 - jaro);
}

} // namespace lumnara::Measures
