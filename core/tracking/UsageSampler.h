#pragma once

#include "core/tracking/TrackingClock.h"
#include "core/tracking/TrackingStore.h"

#include <functional>
#include <optional>
#include <string>

namespace lumnara {

/// What the user is doing at the moment.
struct SamplerInput {
    std::string spaceKey;
    std::string spaceName; ///< as shown to the user
    std::string displayUUID;
    std::optional<std::string> appBundleID;
    std::optional<std::string> appName;

    bool operator==(const SamplerInput&) const = default;
};

/// What a session is called that was started without a name.
inline constexpr const char* defaultSessionName = "Session";

/// Turns what the user is doing into intervals: one is open while nothing changes, and a change closes it
/// and opens the next. Main thread. Everything throws the store's DatabaseError; what was to be done can
/// then be asked for again.
class UsageSampler {
public:
    struct Current {
        Interval interval; ///< the open one
        SamplerInput input;
        bool idle = false;
    };

    /// Both outlive the sampler.
    UsageSampler(TrackingStore& store, const TrackingClock& clock) : store_(store), clock_(clock) {}

    /// Shorter intervals leave no trace.
    double minimumIntervalSeconds = 1.0;
    /// Whether the screen is locked, which stops the record.
    std::function<bool()> isSuspendedByScreenLock = [] { return false; };
    /// Seconds between two calls of beat().
    double heartbeat = 60.0;

    const std::optional<Current>& current() const { return current_; }
    /// The session that time counts for now, running or paused.
    const std::optional<std::string>& activeSessionID() const { return activeSessionID_; }

    /// Closes what a crash left open. Before the first record().
    void repairAfterCrash();
    /// Sets the state of the moment; nothing is written while it stays the same.
    void record(const SamplerInput& input, bool idle) { record(input, idle, clock_.now()); }
    /// The same of an earlier moment, after the last record.
    void record(const SamplerInput& input, bool idle, Date at);
    /// Notes that the open interval is alive.
    void beat();
    void closeCurrent() { closeCurrent(clock_.now()); }

    /// Ends the active session, if there is one, and starts another: time counts for it from now on.
    TrackingSession startSession(const std::string& name);
    void endSession();
    /// A label on the session: what is recorded later still counts for it.
    void pauseSession();
    void resumeSession();

private:
    std::optional<TrackingSession> activeSession();
    void splitCurrent();
    void closeCurrent(Date at);
    void writeEnd(Date at);

    TrackingStore& store_;
    const TrackingClock& clock_;
    std::optional<Current> current_;
    std::optional<std::string> activeSessionID_;
};

} // namespace lumnara
