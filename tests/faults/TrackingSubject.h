#pragma once

#include "core/tracking/UsageSampler.h"
#include "tests/faults/Subjects.h"

namespace lumnara::testing {

/// The record of times, by its sampler. A change records one more desktop and then its heartbeat, and every
/// third desktop begins a session; the state is the number of heartbeats.
class TrackingSubject : public Subject {
public:
    /// With the repair that the program begins with.
    TrackingSubject(async::Loop& loop, const std::filesystem::path& folder);

    void change(int k) override;
    void retry(int k) override { change(k); }

    static int found(async::Loop& loop, const std::filesystem::path& folder);

private:
    struct SetClock : TrackingClock {
        Date date;
        Date now() const override { return date; }
    };

    TrackingStore store_;
    SetClock clock_;
    UsageSampler sampler_{store_, clock_};
    /// The change that was asked for last, the row that it makes, and whether it has begun its session.
    int change_ = 0;
    int row_;
    bool hasSession_ = false;
};

} // namespace lumnara::testing
