#include "core/async/Task.h"
#include "core/model/SpaceKitError.h"
#include "tests/simruns/SwitchingSession.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <set>

namespace lumnara {
namespace {

using testing::Outcome;
using Case = SwitchError::Case;

constexpr int runs = 5000;
constexpr int switchesARun = 3;

/// By fault, how often each way out was taken, so that no run proves nothing.
using Tally = std::map<std::string, std::map<std::string, int>>;

/// A Mac, its user and its faults, all from one seed: switches one after another, faults and a user at random
/// moments in between, and what holds at each outcome.
class FaultRun {
public:
    FaultRun(std::uint64_t seed, Tally& tally)
        : seed_(seed),
          random_(seed ^ 0x5EED),
          session_({.seed = seed,
                    .separateSpaces = random_.below(8) != 0,
                    .systemVersion = random_.below(2) == 0 ? 13 : 14},
                   [this](SimulatedMac& mac) {
                       isWithoutSymbol_ = random_.below(6) == 0;
                       if (isWithoutSymbol_) mac.inject(SimulatedFault::symbolMissing);
                   }),
          tally_(tally) {
        furnish();
        landings_ = session_.mac.stage().shown.subscribe(
            [this](SpaceID space) { shownSince_[space] = session_.loop.now(); });
    }

    void play() {
        for (int number = 0; number < switchesARun; ++number) {
            SCOPED_TRACE(fmt::format("seed {}, switch {}", seed_, number));
            playSwitch();
            rest();
        }
    }

private:
    void furnish() {
        SimulatedMac& mac = session_.mac;
        for (const SimulatedDisplay& display : mac.layout().displays())
            for (auto more = random_.below(4); more > 0; --more) mac.addDesktop(display.uuid);
        for (const char* name : {"Notes", "Player"}) {
            const auto app = mac.launch(name, std::string("com.example.") + name);
            WindowNumber last = 0;
            for (auto more = 1 + random_.below(3); more > 0; --more)
                last = mac.openWindow(app, anySpace().id);
            if (random_.below(3) == 0) mac.enterFullscreen(last);
        }
        session_.loop.runUntilDone();
        session_.mac.pointer().moveTo({random_.between(0, 4000), random_.between(0, 900)});
        session_.switcher.settings.instantSwitching = random_.below(4) != 0;
        session_.switcher.keepHelperWindowsWarm = random_.below(2) == 0;
        session_.helperWindow.handsFocusBack = random_.below(4) != 0;
    }

    const SimulatedSpace& anySpace() {
        const auto& displays = session_.mac.layout().displays();
        const auto& spaces = displays[random_.below(displays.size())].spaces;
        return spaces[random_.below(spaces.size())];
    }

    void playSwitch() {
        target_ = anySpace().id;
        if (session_.mac.layout().isShown(target_)) target_ = anySpace().id;
        display_ = {session_.mac.layout().displayOf(target_)->uuid};
        befallen_.clear();
        session_.events.forget();
        pointerBefore_ = session_.mac.pointer().position();
        historyBefore_ = session_.switcher.history;
        if (random_.below(20) == 0) {
            befallen_.insert("Mission Control open");
            session_.mac.openFile("/System/Applications/Mission Control.app");
            session_.loop.advance(1);
        }
        std::vector<std::unique_ptr<async::Delayed>> faults;
        for (auto more = random_.below(3); more > 0; --more) faults.push_back(faultInTime());

        Space target;
        target.id = target_;
        try { // a caller hands in what it has read
            const auto shown = session_.reader.snapshot();
            for (const PlacedSpace& placed : shown.allSpaces())
                if (placed.space.id == target_) target = placed.space;
        } catch (const SpaceKitError&) {
            // The switch is asked for all the same.
        }
        bool ended = false;
        const auto handle = async::spawn(
            session_.loop, judge(session_.switcher.switchTo(target, display_, std::nullopt), ended));
        for (int step = 0; step < 200 && !ended; ++step) session_.loop.advance(0.05);
        EXPECT_TRUE(ended);
    }

    std::unique_ptr<async::Delayed> faultInTime() {
        // A swipe is over soon, a helper window takes its time.
        const double moment = random_.between(0, random_.below(3) == 0 ? 1.2 : 0.15);
        if (random_.below(10) == 0)
            return std::make_unique<async::Delayed>(session_.loop, moment, [this] {
                befallen_.insert("space removed");
                session_.mac.removeSpace(random_.below(2) == 0 ? target_ : anySpace().id);
            });
        if (random_.below(10) == 0)
            return std::make_unique<async::Delayed>(session_.loop, moment, [this] {
                befallen_.insert("display unplugged");
                session_.mac.removeScreen(random_.below(2) == 0 ? "LEFT" : "RIGHT");
            });
        SimulatedFault fault = SimulatedFault::symbolMissing; // of which nobody would notice now
        while (fault == SimulatedFault::symbolMissing)
            fault = everySimulatedFault[random_.below(everySimulatedFault.size())];
        return std::make_unique<async::Delayed>(session_.loop, moment, [this, fault] {
            befallen_.emplace(nameOf(fault));
            session_.mac.inject(fault);
        });
    }

    async::Task<> judge(async::Task<SwitchResult> task, bool& ended) {
        Outcome outcome;
        co_await testing::noteEnd(std::move(task), outcome);
        ended = true;
        note(outcome);
        judgePointer();
        if (outcome.result)
            judgeLanding(*outcome.result);
        else
            judgeFailure(outcome);
    }

    void note(const Outcome& outcome) {
        const std::string end =
            outcome.result ? std::string(rawValue(outcome.result->engine)) : sentenceOf(outcome.error);
        if (isWithoutSymbol_) befallen_.emplace(nameOf(SimulatedFault::symbolMissing));
        if (befallen_.empty()) befallen_.emplace("no fault");
        for (const std::string& fault : befallen_) ++tally_[fault][end];
    }
    bool befell(SimulatedFault fault) const { return befallen_.contains(std::string(nameOf(fault))); }

    void judgePointer() {
        const auto& events = session_.events;
        if (!events.warps.empty()) {
            EXPECT_EQ(events.warps.back(), *events.saved) << "the last warp is the way back";
        }
        if (!befell(SimulatedFault::pointerGrabbed) && !befallen_.contains("display unplugged")) {
            EXPECT_EQ(session_.mac.pointer().position(), pointerBefore_);
        }
    }

    void judgeLanding(const SwitchResult& result) {
        EXPECT_TRUE(result.landed);
        EXPECT_EQ(told(), target_);
        const SpaceSnapshot now = session_.reader.snapshot();
        const auto key = session_.switcher.history.current(display_.uuid);
        if (!befell(SimulatedFault::staleReading)) {
            EXPECT_TRUE(session_.mac.layout().isShown(target_));
            // Of the shared arrangement nobody asks whether it animates.
            EXPECT_TRUE(display_.isMain() || !canTellAnimations() ||
                        !session_.mac.stage().isAnimating(display_.uuid));
            const auto recorded = now.resolve(key.value_or(""));
            EXPECT_TRUE(befallen_.contains("space removed") || befallen_.contains("display unplugged") ||
                        (recorded && recorded->space.id == target_));
        }
    }

    void judgeFailure(const Outcome& outcome) {
        EXPECT_EQ(session_.switcher.history, historyBefore_);
        const auto error = outcome.switchError();
        if (!error) {
            EXPECT_TRUE(isWithoutSymbol_);
            EXPECT_EQ(sentenceOf(outcome.error),
                      "This macOS build does not expose the desktop APIs Lumnara needs.");
            return;
        }
        const bool wasStale = befell(SimulatedFault::staleReading);
        switch (error->which()) {
        case Case::notLanded:
            EXPECT_TRUE(wasStale || !hasShownTheTargetForAWhile());
            EXPECT_TRUE(!befallen_.contains("no fault") || ownerMayStay());
            break;
        case Case::alreadyThere: EXPECT_EQ(told(), target_); break;
        case Case::targetNotInSnapshot:
            EXPECT_TRUE(wasStale || !session_.mac.layout().displayOf(target_));
            break;
        case Case::missionControlActive: EXPECT_TRUE(session_.mac.missionControl().isUp()); break;
        case Case::engineUnavailable: EXPECT_FALSE(helperStandsOnTarget()); break;
        default: ADD_FAILURE() << error->sentence();
        }
    }

    std::optional<SpaceID> told() {
        for (const SimulatedDisplay& display : session_.mac.stage().told())
            if (display.uuid == display_.uuid) return display.current;
        return std::nullopt;
    }

    bool canTellAnimations() { return session_.seams.windowServer->isAnimating(display_).has_value(); }

    /// On the display that was asked for, longer than the pause after the last look.
    bool hasShownTheTargetForAWhile() {
        const SimulatedDisplay* display = session_.mac.layout().display(display_.uuid);
        if (!display || display->current != target_ || session_.mac.stage().isAnimating(display_.uuid))
            return false;
        const auto since = shownSince_.find(target_);
        const auto now = session_.loop.now();
        return since == shownSince_.end() || now - since->second > async::wholeNanos(0.0601);
    }

    /// A full-screen Space whose owner may have another window in view, and no gesture to get there.
    bool ownerMayStay() {
        const SimulatedDisplay* display = session_.mac.layout().displayOf(target_);
        return !session_.switcher.settings.instantSwitching &&
               display->find(target_)->kind == SpaceKind::fullscreen;
    }

    bool helperStandsOnTarget() {
        return std::ranges::any_of(session_.mac.windows().all(), [this](const SimulatedWindow& window) {
            const auto spaces = session_.seams.windowServer->spacesOfWindows({window.number});
            return window.ownerPid == session_.mac.ownPid() && std::ranges::count(spaces, target_) > 0;
        });
    }

    /// The faults are over, the program reads again, and its windows are where they belong.
    void rest() {
        session_.mac.heal();
        for (const ScreenInfo& screen : screens_)
            if (std::ranges::count(session_.mac.layout().screens(), screen) == 0)
                session_.mac.addScreen(screen, 1);
        session_.mac.inject(SimulatedFault::userEscapes);
        session_.loop.advance(2);
        SpaceSnapshot snapshot;
        try {
            snapshot = session_.reader.snapshot();
        } catch (const SpaceKitError&) {
            return;
        }
        session_.switcher.observe(snapshot);
        std::size_t helpers = 0;
        for (const SimulatedWindow& window : session_.mac.windows().all())
            helpers += window.ownerPid == session_.mac.ownPid() ? 1 : 0;
        EXPECT_LE(helpers, snapshot.allSpaces().size());
    }

    std::uint64_t seed_;
    SimulatedRandom random_;
    bool isWithoutSymbol_ = false;
    testing::SwitchingSession session_;
    Tally& tally_;
    const std::vector<ScreenInfo> screens_ = session_.mac.layout().screens();
    SpaceID target_;
    DisplayID display_;
    /// What went wrong in this switch; a Space that is removed changes the keys of others.
    std::set<std::string> befallen_;
    Point pointerBefore_;
    SwitchHistory historyBefore_;
    std::map<SpaceID, async::Nanos> shownSince_;
    async::Subscription landings_;
};

TEST(SwitchFaultRuns, EndAsTheMacShowsAndWithThePointerWhereItWas) {
    Tally tally;
    for (std::uint64_t seed = 1; seed <= runs && !::testing::Test::HasFailure(); ++seed)
        FaultRun(seed, tally).play();
    std::set<std::string> ends;
    for (const auto& [fault, counts] : tally)
        for (const auto& [end, count] : counts) ends.insert(end);
    for (const SimulatedFault fault : everySimulatedFault)
        EXPECT_GT(tally[std::string(nameOf(fault))].size(), 2u) << nameOf(fault);
    EXPECT_EQ(ends.size(), 9u) << "three engines, five refusals, and no desktops to read";
}

} // namespace
} // namespace lumnara
