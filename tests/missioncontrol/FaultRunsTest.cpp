#include "core/missioncontrol/DesktopRemoveError.h"
#include "core/missioncontrol/MissionControlArranger.h"
#include "core/missioncontrol/ReorderPlan.h"
#include "core/model/SpaceKitError.h"
#include "tests/missioncontrol/MissionControlTest.h"
#include "tests/support/LogLines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <set>

namespace lumnara {
namespace {

using testing::Ended;
using testing::ScriptedMissionControl;

constexpr unsigned runs = 5000;

/// What may go wrong in a run.
struct Fault {
    const char* name;
    std::function<void(ScriptedMissionControl&, std::mt19937&)> happen;
    /// A script alone with it reaches its aim all the same.
    bool harmless = false;
};

double between(std::mt19937& random, double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

std::size_t below(std::mt19937& random, std::size_t limit) { return random() % limit; }

std::vector<Space>& spacesOf(SpaceSnapshot& layout) { return layout.displays.front().spaces; }

/// Many times more than a run can take.
constexpr int always = 1'000'000;

const std::vector<Fault> faults{
    {"nothing", [](auto&, auto&) {}, true},
    {"never opens", [](auto& mc, auto&) { mc.opensAfter = 1e6; }},
    {"opens slowly", [](auto& mc, auto& random) { mc.opensAfter = between(random, 0.5, 2.9); }, true},
    {"closed by the user", [](auto& mc, auto&) { mc.closeByItself(); }},
    {"closes slowly", [](auto& mc, auto& random) { mc.closesAfter = between(random, 0.5, 1.4); }, true},
    {"an Escape is lost", [](auto& mc, auto&) { mc.lostEscapes = 1; }, true},
    {"bar expands late",
     [](auto& mc, auto& random) { mc.expandsInRound = 2 + static_cast<int>(below(random, 2)); }, true},
    {"bar never expands", [](auto& mc, auto&) { mc.expandsInRound = 4; }},
    {"bar collapses", [](auto& mc, auto&) { mc.collapse(); }},
    {"bar unread once", [](auto& mc, auto&) { mc.missingBars = 1; }},
    {"bar gone from the tree", [](auto& mc, auto&) { mc.missingBars = always; }},
    {"frame of NaN", [](auto& mc, auto&) { mc.damagedBars = 1; }},
    {"trust withdrawn", [](auto& mc, auto&) { mc.trusted = false; }},
    {"thumbnails shift",
     [](auto& mc, auto& random) {
         mc.shift = between(random, -90, 90);
         mc.shiftAtDrag = static_cast<int>(below(random, 50));
     }},
    {"a press is lost", [](auto& mc, auto&) { mc.lostPresses = 1; }},
    {"a drop is lost", [](auto& mc, auto&) { mc.lostDrops = 1; }},
    {"a removal is refused", [](auto& mc, auto&) { mc.refusedRemovals = 1; }},
    {"a removal is ignored", [](auto& mc, auto&) { mc.ignoredRemovals = 1; }},
    {"readings lag", [](auto& mc, auto& random) { mc.readingLag = between(random, 0, 1); }},
    {"a reading fails", [](auto& mc, auto&) { mc.failingReadings = 1; }},
    {"readings fail for good", [](auto& mc, auto&) { mc.failingReadings = always; }},
    {"the user takes the pointer",
     [](auto& mc, auto& random) { mc.pointer = {between(random, 0, 2880), between(random, 0, 900)}; }, true},
    {"a desktop vanishes",
     [](auto& mc, auto& random) {
         mc.change([&](SpaceSnapshot& layout) {
             auto& spaces = spacesOf(layout);
             spaces.erase(spaces.begin() + static_cast<std::ptrdiff_t>(below(random, spaces.size())));
         });
     }},
    {"a desktop appears",
     [](auto& mc, auto& random) {
         mc.change([&](SpaceSnapshot& layout) {
             auto& spaces = spacesOf(layout);
             spaces.insert(spaces.begin() + static_cast<std::ptrdiff_t>(below(random, spaces.size())),
                           testing::makeSpace(900, "U900"));
         });
     }},
    {"another order by the user",
     [](auto& mc, auto& random) {
         mc.change([&](SpaceSnapshot& layout) { std::ranges::shuffle(spacesOf(layout), random); });
     }},
    {"display unplugged",
     [](auto& mc, auto&) {
         mc.frames.erase("D1");
         mc.change([](SpaceSnapshot& layout) {
             for (const Space& space : spacesOf(layout)) layout.displays[1].spaces.push_back(space);
             layout.displays.erase(layout.displays.begin());
         });
     }},
    {"titles in another language", [](auto& mc, auto&) { mc.titlePrefix = "Schreibtisch "; }},
    {"titles numbered otherwise", [](auto& mc, auto&) { mc.firstNumber = 2; }},
    {"no identifiers in the tree", [](auto& mc, auto&) { mc.addButtonHasIdentifier = false; }},
    {"no add button", [](auto& mc, auto&) { mc.addButtonShows = false; }},
};

/// One run of a script, into which a fault or two fall at random moments, and what has to hold behind it
/// whatever happened.
class FaultRun {
public:
    explicit FaultRun(unsigned seed) : random_(seed) {
        const std::size_t desktops = 2 + below(random_, 6);
        mc.change([&](SpaceSnapshot& layout) {
            layout = testing::twoDisplays(static_cast<int>(desktops));
            if (random_() % 3 == 0) spacesOf(layout)[below(random_, desktops)].kind = SpaceKind::fullscreen;
        });
        for (const SpaceID id : mc.order("D1")) wish_.push_back(id);
        std::ranges::shuffle(wish_, random_);
        const std::size_t count = seed % 3 == 0 ? 1 : 1 + below(random_, 2);
        while (plans_.size() < count) letHappen();
        mc.onCall = [this] {
            for (Plan& plan : plans_)
                if (mc.calls == plan.atCall) plan.fault->happen(mc, random_);
        };
    }

    std::string story() const {
        std::string text;
        for (const Plan& plan : plans_)
            text += std::string(plan.fault->name) + " at call " + std::to_string(plan.atCall) + "; ";
        return text;
    }

    void reorder() {
        const auto ended = testing::finish(loop, arranger.reorder({"D1"}, wish_));
        expectLeft();
        EXPECT_TRUE(mc.removed.empty() && mc.added.empty());
        if (ended.value)
            expectAgrees(*ended.value);
        else
            expectNothingBegun(ended.error);
    }

    void remove() {
        if (random_() % 8 != 0) wishForWhatCanGo();
        const auto ended = testing::finish(loop, arranger.remove(wish_, {"D1"}));
        expectLeft();
        EXPECT_TRUE(mc.dropped.empty() && mc.added.empty());
        // Titles tell places: what others change and the window server doesn't tell yet can't be seen at all.
        const bool blind = willHappen("readings lag") && othersChangeTheLayout();
        for (const SpaceID id : mc.removed)
            EXPECT_TRUE(blind || std::ranges::find(wish_, id) != wish_.end()) << "unasked: " << id.text();
        if (ended.value)
            expectAgrees(*ended.value);
        else
            expectNothingBegun(ended.error);
    }

    void create() {
        const auto ended = testing::finish(loop, arranger.create({"D1"}));
        expectLeft(1.3);
        EXPECT_TRUE(mc.removed.empty() && mc.dropped.empty());
        EXPECT_LE(mc.added.size(), 1u);
        const DesktopCreator::Failure noButton(DesktopCreator::Failure::Case::buttonMissing);
        EXPECT_TRUE(mc.added.empty() || !ended.failedWith(noButton));
        const bool seen = !willHappen("readings lag") && !othersChangeTheLayout();
        EXPECT_TRUE(!ended.value || !seen || *ended.value == mc.added);
    }

    void cancelled() {
        Ended<ReorderOutcome> ended;
        auto handle = async::spawn(loop, testing::noteEnd(arranger.reorder({"D1"}, wish_), ended));
        loop.advance(between(random_, 0, 8));
        handle.cancel();
        loop.runUntilDone();
        EXPECT_TRUE(ended.value || ended.error);
        EXPECT_FALSE(mc.held);
        EXPECT_EQ(mc.warped, mc.asked);
        EXPECT_GE(mc.escapes, mc.opens);
    }

    async::TestLoop loop;
    ScriptedMissionControl mc{loop, testing::twoDisplays(4)};
    MissionControlArranger arranger{mc, mc, mc};

private:
    struct Plan {
        const Fault* fault;
        int atCall;
    };

    void wishForWhatCanGo() {
        const SpaceSnapshot layout = mc.layout();
        std::erase_if(wish_, [&](SpaceID id) {
            return layout.resolve("unkeyed:" + id.text())->space.kind != SpaceKind::user;
        });
        wish_.resize(below(random_, wish_.size()));
    }

    bool isHarmless() const {
        return std::ranges::all_of(plans_, [](const Plan& plan) { return plan.fault->harmless; });
    }

    bool willHappen(std::string_view name) const {
        return std::ranges::any_of(plans_, [&](const Plan& plan) { return plan.fault->name == name; });
    }

    bool othersChangeTheLayout() const {
        return willHappen("another order by the user") || willHappen("a desktop appears") ||
               willHappen("a desktop vanishes") || willHappen("display unplugged");
    }

    void letHappen() {
        const Fault& fault = faults[below(random_, faults.size())];
        if (willHappen(fault.name)) return;
        // The opening is some twenty calls, a move ninety: early moments matter as much as late ones.
        constexpr std::array<std::size_t, 3> reaches{25, 120, 500};
        plans_.push_back({&fault, 1 + static_cast<int>(below(random_, reaches[below(random_, 3)]))});
    }

    /// `patience`: seconds for which the script waits for Mission Control; what comes later it can't send
    /// away.
    void expectLeft(double patience = 3) {
        EXPECT_FALSE(mc.held);
        EXPECT_EQ(mc.presses, mc.releases);
        loop.advance(5);
        EXPECT_TRUE(!mc.showsNow() || mc.opensAfter > patience);
        EXPECT_EQ(mc.warped, mc.asked);
        EXPECT_TRUE(mc.restsAfterWarp);
    }

    void expectNothingBegun(const std::exception_ptr& error) {
        EXPECT_TRUE(mc.dropped.empty() && mc.removed.empty());
        EXPECT_EQ(mc.presses, 0);
        try {
            std::rethrow_exception(error);
        } catch (const SpaceReorderError& caught) {
            using Case = SpaceReorderError::Case;
            const bool afterOpening =
                caught.which() == Case::missionControlDidNotOpen || caught.which() == Case::spacesBarNotFound;
            EXPECT_EQ(mc.opens, afterOpening ? 1 : 0) << caught.sentence();
        } catch (const DesktopRemoveError& caught) {
            EXPECT_EQ(mc.opens, 0) << caught.sentence();
        } catch (const SpaceKitError&) {
            EXPECT_EQ(mc.opens, 0);
            EXPECT_FALSE(mc.lastReading);
        }
    }

    static std::optional<std::vector<SpaceID>> orderIn(const std::optional<SpaceSnapshot>& reading) {
        const DisplaySpaces* shown = reading ? reading->spacesOnDisplay("D1") : nullptr;
        if (shown == nullptr) return std::nullopt;
        std::vector<SpaceID> order;
        for (const Space& space : shown->spaces) order.push_back(space.id);
        return order;
    }

    bool barIsAsExpected(std::size_t count) const {
        return mc.lastBar && mc.lastBar->size() == count && std::isfinite(mc.lastBar->back().frame.x) &&
               mc.lastBar->front().frame.height > 26;
    }

    void expectAgrees(const ReorderOutcome& outcome) {
        const std::vector<SpaceID> before = *orderIn(mc.firstReading);
        const std::vector<SpaceID> target = ReorderPlan::reconciled(wish_, before);
        EXPECT_EQ(outcome.planned, ReorderPlan::moves(before, wish_));
        const auto performed = static_cast<std::size_t>(outcome.performed);
        ASSERT_LE(performed, outcome.planned.size());
        EXPECT_EQ(!outcome.stoppedBecause, performed == outcome.planned.size());
        std::vector<SpaceID> verified = before;
        for (std::size_t i = 0; i < performed; ++i)
            verified = ReorderPlan::applying(outcome.planned[i], std::move(verified));
        EXPECT_EQ(outcome.finalOrder, orderIn(mc.lastReading).value_or(verified));
        EXPECT_EQ(outcome.matchesDesired, outcome.finalOrder == target);
        EXPECT_TRUE(outcome.matchesDesired || !isHarmless());
        if (outcome.stoppedBecause) expectTrue(*outcome.stoppedBecause, outcome, before.size());
    }

    /// Whether what ended the run is what the screen showed.
    void expectTrue(const std::string& sentence, const ReorderOutcome& outcome, std::size_t count) {
        const ReorderMove next = outcome.planned[static_cast<std::size_t>(outcome.performed)];
        if (sentence == "Mission Control closed or stopped showing the desktop thumbnails.") {
            EXPECT_FALSE(barIsAsExpected(count));
            EXPECT_EQ(mc.presses, outcome.performed);
        } else if (sentence == "Mission Control closed while a desktop was being moved.") {
            EXPECT_TRUE(!mc.lastBar || mc.lastBar->size() != count || !barIsAsExpected(count));
            EXPECT_EQ(mc.presses, outcome.performed + 1);
        } else {
            EXPECT_EQ(sentence, "Mission Control did not move desktop " + std::to_string(next.from + 1) +
                                    " to position " + std::to_string(next.to + 1) + ".");
            EXPECT_EQ(mc.presses, outcome.performed + 1);
        }
    }

    void expectAgrees(const RemoveOutcome& outcome) {
        // What was reported to be gone was removed by us, or by another in the very moment.
        const std::vector<SpaceID> begun(
            wish_.begin(), wish_.begin() + static_cast<std::ptrdiff_t>(outcome.removedIDs.size()));
        EXPECT_EQ(outcome.removedIDs, begun);
        for (const SpaceID id : outcome.removedIDs)
            EXPECT_FALSE(mc.layout().resolve("unkeyed:" + id.text())) << "still there: " << id.text();
        EXPECT_EQ(!outcome.stoppedBecause, outcome.removedIDs.size() == wish_.size());
        EXPECT_LE(mc.removed.size(), outcome.removedIDs.size() + (outcome.stoppedBecause ? 1 : 0));
        EXPECT_TRUE(!outcome.stoppedBecause || !isHarmless());
        if (!outcome.stoppedBecause) return;
        static const std::set<std::string> sentences{
            "That desktop is not on this display any more.",
            "Mission Control closed or stopped showing the desktop thumbnails.",
            "Mission Control's thumbnails did not line up with the desktops. Nothing was changed.",
            "Mission Control did not accept the request to remove that desktop.",
            "Mission Control did not remove the desktop."};
        EXPECT_TRUE(sentences.contains(*outcome.stoppedBecause)) << *outcome.stoppedBecause;
        // Only the last look can have missed a removal that was carried out.
        EXPECT_TRUE(mc.removed.size() == outcome.removedIDs.size() ||
                    *outcome.stoppedBecause == "Mission Control did not remove the desktop.");
    }

    std::mt19937 random_;
    std::vector<SpaceID> wish_;
    std::vector<Plan> plans_;
};

class FaultRuns : public ::testing::TestWithParam<void (FaultRun::*)()> {};

TEST_P(FaultRuns, EndWithTheScreenLeftAndTheTruthTold) {
    const testing::LogLines lines;
    for (unsigned seed = 0; seed < runs && !HasFailure(); ++seed) {
        FaultRun run(seed);
        (run.*GetParam())();
        if (HasFailure()) ADD_FAILURE() << "seed " << seed << ": " << run.story();
    }
}

std::string nameOf(const ::testing::TestParamInfo<void (FaultRun::*)()>& info) {
    return std::vector<const char*>{"Reorder", "Remove", "Create", "Cancelled"}[info.index];
}

INSTANTIATE_TEST_SUITE_P(OfA, FaultRuns,
                         ::testing::Values(&FaultRun::reorder, &FaultRun::remove, &FaultRun::create,
                                           &FaultRun::cancelled),
                         nameOf);

} // namespace
} // namespace lumnara
