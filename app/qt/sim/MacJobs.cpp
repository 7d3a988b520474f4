#include "app/qt/sim/MacJobs.h"

#include "core/async/Task.h"
#include "core/base/Failure.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <ranges>
#include <utility>
#include <vector>

namespace lumnara {

MacJobs::MacJobs(async::Loop& loop, SimulatedMac& mac, DesktopArranger& arranger)
    : loop_(loop),
      mac_(mac),
      arranger_(arranger) {
    arranger_.onProgress = [this](const std::string& sentence) {
        if (onStatus) onStatus(sentence);
    };
}

void MacJobs::reverse(const std::string& display) { start(reverseAll({display})); }
void MacJobs::removeLast(const std::string& display) { start(removeOne({display})); }
void MacJobs::add(const std::string& display) { start(addOne({display})); }

void MacJobs::start(async::Task<std::string> job) {
    if (isRunning_) return;
    isRunning_ = true;
    job_ = async::spawn(loop_, run(std::move(job)));
}

async::Task<> MacJobs::run(async::Task<std::string> job) {
    std::string ended;
    try {
        const std::string outcome = co_await std::move(job);
        ended = outcome;
    } catch (const async::Cancelled&) {
        throw;
    } catch (...) {
        ended = sentenceOf(std::current_exception());
    }
    isRunning_ = false;
    if (onStatus) onStatus(ended);
}

async::Task<std::string> MacJobs::reverseAll(DisplayID display) {
    std::vector<SpaceID> desired;
    if (const SimulatedDisplay* on = mac_.layout().display(display.uuid))
        for (const SimulatedSpace& space : on->spaces | std::views::reverse) desired.push_back(space.id);
    const ReorderOutcome outcome = co_await arranger_.reorder(std::move(display), std::move(desired));
    if (outcome.stoppedBecause)
        co_return fmt::format("{} of {} moves were made. {}", outcome.performed, outcome.planned.size(),
                              *outcome.stoppedBecause);
    co_return fmt::format("The desktops are in the opposite order, after {} moves.", outcome.performed);
}

async::Task<std::string> MacJobs::removeOne(DisplayID display) {
    std::vector<SpaceID> last;
    if (const SimulatedDisplay* on = mac_.layout().display(display.uuid))
        for (const SimulatedSpace& space : on->spaces)
            if (space.kind == SpaceKind::user) last = {space.id};
    const RemoveOutcome outcome = co_await arranger_.remove(std::move(last), std::move(display));
    if (outcome.stoppedBecause) co_return *outcome.stoppedBecause;
    co_return std::string("The last desktop was removed.");
}

async::Task<std::string> MacJobs::addOne(DisplayID display) {
    const std::vector<SpaceID> added = co_await arranger_.create(std::move(display));
    if (added.empty()) co_return std::string("No desktop was added.");
    co_return std::string("A desktop was added.");
}

} // namespace lumnara
