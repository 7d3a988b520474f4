#pragma once

#include "core/model/SpaceProvider.h"
#include "core/seams/Accessibility.h"
#include "core/seams/EventServices.h"
#include "core/seams/Screens.h"
#include "core/switching/GestureSwitching.h"
#include "core/switching/SwitchVerifier.h"

#include <optional>

namespace lumnara {

struct DockSwipeConfig {
    /// Gesture velocity for each step of a jump.
    double velocity = 2000;
    /// Seconds between two swipes of a jump.
    double stepDelay = 0;
    /// Whether a positive velocity leads to the next Space.
    bool positiveIsHigherIndex = true;
    /// Rounds of swipes before giving up.
    int maxAttempts = 3;
    /// Put the pointer back when it was taken to another display.
    bool restoreCursor = true;
    /// Seconds to wait for a running animation.
    double waitForAnimationUpTo = 0.5;
    SwitchVerifier::Config verify;

    bool operator==(const DockSwipeConfig&) const = default;
};

struct SwipePlan {
    int swipes = 0;
    bool towardsHigherIndex = false;

    bool operator==(const SwipePlan&) const = default;
};

/// Switches with the gesture of a trackpad swipe, so quick that the Dock lands on the neighbouring Space
/// without animating. The Dock moves the display under the pointer, so the pointer goes there and back.
/// Main thread.
class DockSwipeEngine : public GestureSwitching {
public:
    /// All must outlive the engine.
    DockSwipeEngine(SpaceProvider& provider, Accessibility& accessibility, EventServices& events,
                    Screens& screens, DockSwipeConfig initial = {})
        : config(initial),
          provider_(provider),
          accessibility_(accessibility),
          events_(events),
          screens_(screens) {}

    DockSwipeConfig config;

    EngineKind kind() const override { return EngineKind::dockSwipe; }
    void setVelocity(double velocity) override { config.velocity = velocity; }
    void setRestoresCursor(bool restores) override { config.restoreCursor = restores; }

    /// Throws SwitchError targetNotInSnapshot, alreadyThere, accessibilityDenied and notLanded, and
    /// Cancelled. However it ends, the pointer is back where it was.
    async::Task<SwitchResult> switchTo(const Space& target, const DisplayID& display,
                                       const SpaceSnapshot& snapshot) override;

    /// How to get from the display's current Space to the target; nothing when the display or its current
    /// Space is unknown, no swipe when the target is not on it.
    static std::optional<SwipePlan> plan(const SpaceSnapshot& snapshot, const DisplayID& display,
                                         SpaceID target);

    /// Posts the three events of one swipe.
    void swipe(bool towardsHigherIndex, bool positiveIsHigherIndex, double speed);

private:
    async::Task<> waitForAnimation(DisplayID display);
    async::Task<int> warpAndSwipe(SpaceID target, DisplayID display, SpaceSnapshot snapshot,
                                  std::optional<Point> warp);
    async::Task<int> swipeUntilLanded(SpaceID target, DisplayID display, SpaceSnapshot snapshot);
    async::Task<> swipeAll(SwipePlan plan);
    /// Where the pointer has to go for the Dock to move this display; nothing when it can stay.
    std::optional<Point> warpTarget(const DisplayID& display);
    SpaceSnapshot readAgain(const DisplayID& display, int afterAttempts);

    SpaceProvider& provider_;
    Accessibility& accessibility_;
    EventServices& events_;
    Screens& screens_;
};

} // namespace lumnara
