#include "tests/simruns/ArrangeRun.h"

#include "core/arranging/ReorderPlan.h"
#include "core/async/Task.h"
#include "tests/simruns/ArrangeMishaps.h"

#include <algorithm>
#include <exception>
#include <fmt/core.h>
#include <iterator>

namespace lumnara::testing {

namespace {

/// One run. Each check names what it saw, so that the seed and the words tell the whole story.
class ArrangeRun {
public:
    ArrangeRun(ArrangeWork work, std::uint64_t seed)
        : random_(seed ^ 0xA44A),
          stage_(random_, seed),
          mishaps_(stage_, random_),
          work_(work) {}

    ArrangeRunEnd play() {
        before_ = stage_.mac.layout().displays();
        pointerBefore_ = stage_.mac.pointer().position();
        wish();
        if (stage_.isWithoutSymbol) mishaps_.note(std::string(nameOf(SimulatedFault::symbolMissing)));
        auto faults = mishaps_.schedule(work_ == ArrangeWork::create ? 3 : 14);
        const bool isCancelled = random_.below(12) == 0;
        const double cancelAt = random_.between(0, 6);
        auto handle = async::spawn(stage_.loop, work());
        for (double passed = 0; passed < 200 && end_.ending.empty(); passed += 0.25) {
            stage_.loop.advance(0.25);
            if (!isCancelled || passed < cancelAt || !end_.ending.empty()) continue;
            mishaps_.note("cancelled");
            handle.cancel();
        }
        expect(!end_.ending.empty(), "it never ended");
        faults.clear();
        judgeWhatIsLeft();
        end_.befallen = mishaps_.befallen();
        return end_;
    }

private:
    void wish() {
        const SimulatedDisplay& display = *stage_.mac.layout().display(stage_.display.uuid);
        for (const SimulatedSpace& space : display.spaces)
            if (work_ != ArrangeWork::remove || space.kind == SpaceKind::user) wish_.push_back(space.id);
        for (std::size_t i = wish_.size(); i > 1; --i) std::swap(wish_[i - 1], wish_[random_.below(i)]);
        if (work_ == ArrangeWork::remove && random_.below(10) != 0 && wish_.size() > 1)
            wish_.resize(1 + random_.below(std::min<std::uint64_t>(4, wish_.size() - 1)));
    }

    async::Task<> work() {
        try {
            if (work_ == ArrangeWork::reorder) {
                const ReorderOutcome outcome = co_await stage_.arranger.reorder(stage_.display, wish_);
                judge(outcome);
            } else if (work_ == ArrangeWork::remove) {
                const RemoveOutcome outcome = co_await stage_.arranger.remove(wish_, stage_.display);
                judge(outcome);
            } else {
                const std::vector<SpaceID> added = co_await stage_.arranger.create(stage_.display);
                judge(added);
            }
        } catch (const std::exception& error) {
            judgeFailure(error);
        }
        judgeLeaving();
    }

    void expect(bool holds, const std::string& what) {
        if (!holds) end_.broken.push_back(what);
    }
    bool befell(std::string_view mishap) const { return mishaps_.befallen().contains(std::string(mishap)); }
    bool befell(SimulatedFault fault) const { return befell(nameOf(fault)); }
    bool nothingBefell() const { return mishaps_.befallen().empty(); }
    /// The system has kept the program's events from the Dock.
    bool wasShutOut() const { return befell(SimulatedFault::permissionWithdrawn) || befell("screen locked"); }

    // At the very end of the work.

    void judgeLeaving() {
        const WatchedDriver& driver = stage_.driver;
        expect(driver.presses == driver.releases, "a press without its release");
        expect(driver.opens == 0 || driver.escapes > 0, "no Escape behind an opening");
        expect(driver.restsAfterWarp && driver.warped == driver.asked, "the pointer was not put back");
        expect(driver.warped.value_or(pointerBefore_) == pointerBefore_ || mishaps_.movedPointer(),
               "the pointer was put elsewhere");
        const Point pointer = stage_.mac.pointer().position();
        expect(pointer == pointerBefore_ || mishaps_.movedPointer(), "the pointer is elsewhere");
    }

    void judgeFailure(const std::exception& error) {
        end_.ending = error.what();
        expect(dynamic_cast<const Failure*>(&error) != nullptr, "an ending that isn't ours");
        expect(!nothingBefell() || end_.ending == expectedRefusal(), "failed without a reason");
        expect(stage_.driver.presses == 0 || work_ != ArrangeWork::reorder, "failed behind a press");
    }

    /// What is asked for wrongly now and then, and told so.
    std::string expectedRefusal() const {
        if (work_ == ArrangeWork::remove) return "A display keeps at least one desktop.";
        return "macOS allows 16 desktops per display, and this display has 16.";
    }

    void judge(const ReorderOutcome& outcome) {
        end_.ending = outcome.stoppedBecause.value_or("done");
        const auto before = orderIn(stage_.provider.first).value_or(std::vector<SpaceID>());
        expect(outcome.planned == ReorderPlan::moves(before, wish_), "another plan");
        const auto performed = static_cast<std::size_t>(outcome.performed);
        expect(!outcome.stoppedBecause == (performed == outcome.planned.size()),
               "a sentence, or none, amiss");
        std::vector<SpaceID> verified = before;
        for (std::size_t i = 0; i < std::min(performed, outcome.planned.size()); ++i)
            verified = ReorderPlan::applying(outcome.planned[i], std::move(verified));
        expect(outcome.finalOrder == orderIn(stage_.provider.last).value_or(verified), "another final order");
        expect(outcome.matchesDesired == (outcome.finalOrder == ReorderPlan::reconciled(wish_, before)),
               "the match is told wrongly");
        const bool mayChangeLater = mishaps_.changedTheLayout() || befell(SimulatedFault::snapBack);
        expect(outcome.stoppedBecause || mayChangeLater || outcome.finalOrder == verified,
               "tells of moves that were not made");
        const SimulatedDisplay* shown = stage_.mac.layout().display(stage_.display.uuid);
        const bool canSee = shown && stage_.provider.last && !stage_.mac.stage().readingsAreStale();
        expect(!canSee || outcome.finalOrder == orderOf(*shown), "not the order that the Mac shows");
        expect(outcome.matchesDesired || !nothingBefell(), "missed its aim without a reason");
        if (outcome.stoppedBecause && performed < outcome.planned.size())
            judgeStop(outcome, outcome.planned[performed], before.size());
    }

    /// Whether the sentence is what the screen showed.
    void judgeStop(const ReorderOutcome& outcome, ReorderMove next, std::size_t count) {
        const std::string& sentence = *outcome.stoppedBecause;
        const int presses = stage_.driver.presses;
        if (sentence == "Mission Control closed or stopped showing the desktop thumbnails.") {
            expect(!stage_.showsExpandedBar(count) && presses == outcome.performed, "the bar was fine");
        } else if (sentence == "Mission Control closed while a desktop was being moved.") {
            expect(!stage_.showsBar(count) && presses == outcome.performed + 1, "the bar was there");
        } else {
            expect(sentence == fmt::format("Mission Control did not move desktop {} to position {}.",
                                           next.from + 1, next.to + 1) &&
                       presses == outcome.performed + 1,
                   "a sentence of something else: " + sentence);
        }
    }

    void judge(const RemoveOutcome& outcome) {
        end_.ending = outcome.stoppedBecause.value_or("done");
        removed_ = outcome.removedIDs;
        const auto begun = std::min(removed_.size(), wish_.size());
        expect(std::equal(removed_.begin(), removed_.end(), wish_.begin(),
                          wish_.begin() + static_cast<std::ptrdiff_t>(begun)),
               "told of others than the first of what was asked for");
        for (const SpaceID id : removed_)
            expect(!stage_.mac.layout().displayOf(id), "told to be gone: " + id.text());
        expect(!outcome.stoppedBecause == (removed_.size() == wish_.size()), "a sentence, or none, amiss");
        expect(!outcome.stoppedBecause || !nothingBefell(), "stopped without a reason");
        static const std::set<std::string> sentences{
            "That desktop is not on this display any more.",
            "Mission Control closed or stopped showing the desktop thumbnails.",
            "Mission Control's thumbnails did not line up with the desktops. Nothing was changed.",
            "Mission Control did not accept the request to remove that desktop.",
            "Mission Control did not remove the desktop."};
        expect(!outcome.stoppedBecause || sentences.contains(*outcome.stoppedBecause),
               "an unknown sentence: " + end_.ending);
    }

    void judge(const std::vector<SpaceID>& added) {
        end_.ending = added.empty() ? "no desktop came of it" : "done";
        expect(!nothingBefell() || added.size() == 1, "no desktop without a reason");
        for (const SpaceID id : added) expect(!wasThere(id), "told to be new: " + id.text());
        for (const SpaceID id : added)
            expect(stage_.mac.layout().displayOf(id) || mishaps_.changedTheLayout(), "told, and not there");
    }

    // A while behind it, when everything has come to rest.

    void judgeWhatIsLeft() {
        stage_.loop.advance(6);
        expect(!stage_.mac.pointer().isDown() || wasShutOut(), "the button is held");
        // An Escape that is lost can't be known to be by a tree that doesn't tell of Mission Control.
        const bool cannotClose =
            wasShutOut() || (befell(SimulatedFault::gestureLost) && mishaps_.damagedTree());
        expect(!stage_.mac.missionControl().isUp() || cannotClose, "Mission Control is left open");
        judgeSpaces();
    }

    void judgeSpaces() {
        std::vector<SpaceID> gone;
        for (const SimulatedDisplay& display : before_)
            for (const SimulatedSpace& space : display.spaces)
                if (!stage_.mac.layout().displayOf(space.id) &&
                    !mishaps_.removedByOthers().contains(space.id))
                    gone.push_back(space.id);
        // Of all that was asked for, one more than it tells of may have gone.
        const bool mayGo = work_ == ArrangeWork::remove;
        for (const SpaceID id : gone)
            expect((mayGo && std::ranges::count(wish_, id) > 0) || mishaps_.isBlind(),
                   "unasked: " + id.text());
        expect(gone.size() <= removed_.size() + (mayGo && end_.ending != "done" ? 1 : 0),
               "more gone than told");
        std::size_t added = 0;
        for (const SimulatedDisplay& display : stage_.mac.layout().displays())
            for (const SimulatedSpace& space : display.spaces)
                added += !wasThere(space.id) && !mishaps_.addedByOthers().contains(space.id) ? 1 : 0;
        expect(added <=
                   (work_ == ArrangeWork::create && !end_.ending.starts_with("Mission Control did not offer")
                        ? 1u
                        : 0u),
               "desktops that nobody asked for");
    }

    bool wasThere(SpaceID id) const {
        return std::ranges::any_of(before_,
                                   [id](const auto& display) { return display.find(id) != nullptr; });
    }
    static std::vector<SpaceID> orderOf(const SimulatedDisplay& display) {
        std::vector<SpaceID> order;
        for (const SimulatedSpace& space : display.spaces) order.push_back(space.id);
        return order;
    }
    std::optional<std::vector<SpaceID>> orderIn(const std::optional<SpaceSnapshot>& reading) const {
        const DisplaySpaces* shown = reading ? reading->spacesOnDisplay(stage_.display.uuid) : nullptr;
        if (shown == nullptr) return std::nullopt;
        std::vector<SpaceID> order;
        for (const Space& space : shown->spaces) order.push_back(space.id);
        return order;
    }

    SimulatedRandom random_;
    ArrangeStage stage_;
    ArrangeMishaps mishaps_;
    ArrangeWork work_;
    std::vector<SimulatedDisplay> before_;
    Point pointerBefore_;
    std::vector<SpaceID> wish_;
    std::vector<SpaceID> removed_;
    ArrangeRunEnd end_;
};

} // namespace

void ArrangeTally::add(const ArrangeRunEnd& end) {
    constexpr std::string_view notMoved = "Mission Control did not move desktop ";
    ++runs;
    if (!end.broken.empty()) ++broken;
    const std::string ending =
        end.ending.starts_with(notMoved) ? std::string(notMoved) + "<n> to position <m>." : end.ending;
    for (const std::string& mishap : end.befallen) ++endings[mishap][ending];
    if (end.befallen.empty()) ++endings["nothing"][ending];
}

ArrangeRunEnd playArrangeRun(ArrangeWork work, std::uint64_t seed) { return ArrangeRun(work, seed).play(); }

} // namespace lumnara::testing
