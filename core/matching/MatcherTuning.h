#pragma once

/// The matcher's thresholds, read at each use, so that they can be turned while the program runs. Main
/// thread.
namespace lumnara::MatcherTuning {

/// The lowest top score that can be accepted at all.
inline double acceptThreshold = 0.75;
/// A second that comes nearer to the top than this makes it ambiguous.
inline double ambiguityMargin = 0.08;
/// A top score at or above this is never ambiguous.
inline double exactScore = 0.999;
/// The lowest top score that can be accepted while speech goes on.
inline double earlyAcceptThreshold = 0.9;
/// How far the second has to stay behind for that.
inline double earlyAcceptMargin = 0.15;
/// The lowest score that stays in the Board's list.
inline double filterThreshold = 0.35;
/// What a query gains that begins a word of the phrase, when spoken and when typed.
inline double voicePrefixBonus = 0.05;
inline double filterPrefixBonus = 0.15;

} // namespace lumnara::MatcherTuning
