#pragma once

#include "core/async/Task.h"
#include "tests/simruns/ArrangeStage.h"

#include <algorithm>
#include <fmt/ranges.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumnara::bench {

/// A line a step: what was done in Mission Control when, what the surface was told, and what came of it.
struct ArrangeTranscript {
    std::string text;
    /// How long it took on the Mac's own clock.
    double seconds = 0;
};

/// A stage that writes down what happens on it.
class RecordedStage : public testing::ArrangeStage {
public:
    explicit RecordedStage(int desktops) : ArrangeStage(desktops) {
        driver.onStep = [this](const std::string& step) { write(step); };
        arranger.onProgress = [this](const std::string& sentence) {
            write("          \"" + sentence + "\"");
        };
        write("          before: " + shown());
    }

    std::vector<SpaceID> order() const {
        std::vector<SpaceID> ids;
        for (const SimulatedSpace& space : mac.layout().display(display.uuid)->spaces)
            ids.push_back(space.id);
        return ids;
    }
    std::string shown() const {
        std::vector<std::string> ids;
        for (const SpaceID id : order()) ids.push_back(id.text());
        return fmt::format("{}", fmt::join(ids, " "));
    }
    void write(const std::string& line) { transcript.text += line + "\n"; }
    ArrangeTranscript finish(async::Task<> task) {
        const auto handle = async::spawn(loop, std::move(task));
        loop.runUntilDone();
        write("          after:  " + shown());
        transcript.seconds = async::secondsOf(loop.now());
        return transcript;
    }

    ArrangeTranscript transcript;
};

inline async::Task<> reorderOn(RecordedStage& stage, std::vector<SpaceID> wish, ReorderOutcome& outcome) {
    const ReorderOutcome ended = co_await stage.arranger.reorder(stage.display, std::move(wish));
    outcome = ended;
}

inline async::Task<> removeOn(RecordedStage& stage, std::vector<SpaceID> ids, RemoveOutcome& outcome) {
    const RemoveOutcome ended = co_await stage.arranger.remove(std::move(ids), stage.display);
    outcome = ended;
}

/// So many desktops are turned around. Throws when they don't end that way.
inline ArrangeTranscript reorderTranscript(int desktops) {
    RecordedStage stage(desktops);
    std::vector<SpaceID> wish = stage.order();
    std::ranges::reverse(wish);
    ReorderOutcome outcome;
    ArrangeTranscript transcript = stage.finish(reorderOn(stage, wish, outcome));
    if (!outcome.matchesDesired || stage.order() != wish)
        throw std::runtime_error("the order was not turned");
    transcript.text += fmt::format("          {} of {} moves\n", outcome.performed, outcome.planned.size());
    return transcript;
}

/// The user presses Escape while the first of three desktops goes. Throws when one went unasked.
inline ArrangeTranscript stoppedRemovalTranscript() {
    RecordedStage stage(5);
    const std::vector<SpaceID> before = stage.order();
    const std::vector<SpaceID> wish{before[1], before[3], before[4]};
    RemoveOutcome outcome;
    std::unique_ptr<async::Delayed> escape;
    const auto progress = stage.arranger.onProgress;
    stage.arranger.onProgress = [&](const std::string& sentence) {
        progress(sentence);
        if (!sentence.ends_with("(1/3)")) return;
        escape = std::make_unique<async::Delayed>(stage.loop, 0.2, [&stage] {
            stage.write("          the user presses Escape");
            stage.mac.inject(SimulatedFault::userEscapes);
        });
    };
    ArrangeTranscript transcript = stage.finish(removeOn(stage, wish, outcome));
    if (outcome.removedIDs != std::vector{wish[0]} || stage.order().size() != before.size() - 1)
        throw std::runtime_error("another desktop went");
    transcript.text +=
        fmt::format("          1 of 3 removed; {}\n", outcome.stoppedBecause.value_or("no reason"));
    return transcript;
}

} // namespace lumnara::bench
