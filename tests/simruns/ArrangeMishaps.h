#pragma once

#include "tests/simruns/ArrangeStage.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lumnara::testing {

/// What goes wrong while desktops are arranged: the Mac's own faults, others who change the desktops and the
/// screens, and elements that don't tell the truth.
class ArrangeMishaps {
public:
    ArrangeMishaps(ArrangeStage& stage, SimulatedRandom& random) : stage_(stage), random_(random) {}

    /// None, one or two, at random moments of the next seconds.
    std::vector<std::unique_ptr<async::Delayed>> schedule(double seconds);

    /// Those whose moment came, in words.
    const std::set<std::string>& befallen() const { return befallen_; }
    void note(std::string mishap) { befallen_.insert(std::move(mishap)); }
    const std::set<SpaceID>& removedByOthers() const { return removed_; }
    const std::set<SpaceID>& addedByOthers() const { return added_; }
    bool movedPointer() const;
    bool damagedTree() const { return damagedTree_; }
    bool changedTheLayout() const { return changedTheLayout_; }
    /// Titles tell places: what others change and the window server doesn't tell yet can't be seen at all.
    bool isBlind() const;

private:
    struct Mishap {
        const char* name;
        std::function<void(ArrangeMishaps&)> happen;
    };
    static const std::vector<Mishap> mishaps;

    void unplugForAWhile();
    /// The attribute is told otherwise, or not at all.
    void damage(std::string attribute, std::optional<AccessibilityValue> lie);
    std::string anyAttribute();
    SpaceID anySpace();

    ArrangeStage& stage_;
    SimulatedRandom& random_;
    std::set<std::string> befallen_;
    std::set<SpaceID> removed_;
    std::set<SpaceID> added_;
    bool damagedTree_ = false;
    bool changedTheLayout_ = false;
    /// What ends by itself.
    std::vector<std::unique_ptr<async::Delayed>> ends_;
};

} // namespace lumnara::testing
