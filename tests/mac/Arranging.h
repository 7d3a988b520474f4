#pragma once

#include "core/platform/mac/missioncontrol/SpaceReorderError.h"
#include "tests/simruns/ArrangeStage.h"
#include "tests/support/Ended.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace lumnara::testing {

/// The arranger at work on a simulated Mac. Desktops go by numbers: "LEFT" has 1 to 4 at first, "RIGHT" 11 to
/// 14, and all that come later are 0.
class Arranging : public ArrangeStage {
public:
    using Numbers = std::vector<int>;

    explicit Arranging(SimulatedMacOptions options = {},
                       const std::function<void(SimulatedMac&)>& prepare = {})
        : ArrangeStage(4, options, prepare) {
        for (const SimulatedDisplay& shown : mac.layout().displays())
            for (std::size_t i = 0; i < shown.spaces.size(); ++i)
                known_.push_back({(shown.uuid == "LEFT" ? 1 : 11) + static_cast<int>(i), shown.spaces[i].id});
        arranger.onProgress = [this](const std::string& sentence) {
            said.push_back(sentence);
            const auto happens = onSaid.find(sentence);
            if (happens != onSaid.end()) happens->second(*this);
        };
    }

    SpaceID id(int number) const {
        const auto found = std::ranges::find(known_, number, &Known::number);
        return found == known_.end() ? SpaceID{999'999} : found->id;
    }
    std::vector<SpaceID> ids(const Numbers& numbers) const {
        std::vector<SpaceID> ids;
        for (const int number : numbers) ids.push_back(id(number));
        return ids;
    }
    Numbers numbers(const std::vector<SpaceID>& ids) const {
        Numbers numbers;
        for (const SpaceID each : ids) {
            const auto found = std::ranges::find(known_, each, &Known::id);
            numbers.push_back(found == known_.end() ? 0 : found->number);
        }
        return numbers;
    }
    Numbers order(const char* on = "LEFT") const {
        std::vector<SpaceID> ids;
        for (const SimulatedSpace& space : mac.layout().display(on)->spaces) ids.push_back(space.id);
        return numbers(ids);
    }

    Ended<ReorderOutcome> reorder(const Numbers& wish, const char* on = "LEFT") {
        return finish(loop, arranger.reorder({on}, ids(wish)));
    }
    Ended<RemoveOutcome> remove(const Numbers& which, const char* on = "LEFT") {
        return finish(loop, arranger.remove(ids(which), {on}));
    }
    Ended<std::vector<SpaceID>> create(const char* on = "LEFT") {
        return finish(loop, arranger.create({on}));
    }

    using Mishap = std::function<void(Arranging&)>;
    /// What is to happen as the driver is asked for the n-th of these.
    void at(const int WatchedDriver::* count, int n, Mishap happens) {
        driver.onCall = [this, count, n, happens = std::move(happens), isPast = false]() mutable {
            if (isPast || driver.*count != n) return;
            isPast = true;
            happens(*this);
        };
    }

    /// The button is up, the pointer where it was, Mission Control left.
    void expectLeft() {
        EXPECT_FALSE(mac.pointer().isDown());
        EXPECT_EQ(driver.presses, driver.releases);
        EXPECT_FALSE(mac.missionControl().isUp());
        EXPECT_TRUE(driver.warped && driver.warped == driver.asked && driver.restsAfterWarp);
        EXPECT_EQ(mac.pointer().position(), (Point{400, 600}));
    }
    void expectUntouched() {
        EXPECT_EQ(driver.opens + driver.moves + driver.presses + driver.escapes, 0);
        EXPECT_FALSE(driver.warped);
    }

    /// What the surface was told, and what happens as it is told a sentence.
    std::vector<std::string> said;
    std::map<std::string, Mishap> onSaid;

private:
    struct Known {
        int number;
        SpaceID id;
    };
    std::vector<Known> known_;
};

} // namespace lumnara::testing
