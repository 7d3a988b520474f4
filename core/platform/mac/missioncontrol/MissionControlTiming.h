#pragma once

/// How slowly Mission Control is played: what the Dock tolerates. Seconds and points; shorter pauses lose
/// steps.
namespace lumnara::MissionControlTiming {

inline constexpr double openTimeout = 3.0;
inline constexpr double openPollInterval = 0.1;
/// For the animation, once it is open.
inline constexpr double openSettle = 0.5;

inline constexpr double hoverStepPause = 0.1;
inline constexpr double hoverApproachPause = 0.15;
/// For the bar to expand.
inline constexpr double hoverSettlePause = 0.7;
inline constexpr int hoverRounds = 3;

/// After moving onto a thumbnail.
inline constexpr double pointerSettle = 0.1;
/// Between the press and the first drag event.
inline constexpr double pressHold = 0.35;
inline constexpr int liftSteps = 5;
inline constexpr double liftStepDistance = 2.0;
inline constexpr int dragSteps = 30;
/// After each drag event.
inline constexpr double dragStepPause = 0.016;
/// Before the release.
inline constexpr double dropSettle = 0.15;
/// Between the release, or the removal, and the look at what came of it.
inline constexpr double afterDrop = 0.3;
/// How far behind the middle of its new neighbour a thumbnail is dropped.
inline constexpr double dropOvershoot = 60.0;

/// The wait for each Escape.
inline constexpr double closeTimeout = 1.5;
inline constexpr double afterClose = 0.4;

} // namespace lumnara::MissionControlTiming
