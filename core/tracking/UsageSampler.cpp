#include "core/tracking/UsageSampler.h"

#include "core/base/Uuid.h"
#include "core/tracking/Database.h"

#include <algorithm>
#include <utility>

namespace lumnara {

void UsageSampler::repairAfterCrash() { store_.repairOpenIntervals(heartbeat + heartbeat); }

void UsageSampler::record(const SamplerInput& input, bool idle, Date at) {
    if (isSuspendedByScreenLock()) return closeCurrent(at);
    if (current_ && current_->idle == idle && current_->input == input) return;
    Database::Transaction change(store_.database());
    writeEnd(at);
    Interval opened = store_.insert({.id = {},
                                     .sessionID = activeSessionID_,
                                     .spaceKey = input.spaceKey,
                                     .spaceName = input.spaceName,
                                     .displayUUID = input.displayUUID,
                                     .appBundleID = input.appBundleID,
                                     .appName = input.appName,
                                     .startedAt = at,
                                     .endedAt = {},
                                     .isIdle = idle,
                                     .lastHeartbeat = {}});
    change.commit();
    current_ = Current{std::move(opened), input, idle};
}

void UsageSampler::beat() {
    if (current_) store_.heartbeat(*current_->interval.id, clock_.now());
}

void UsageSampler::closeCurrent(Date at) {
    writeEnd(at);
    current_.reset();
}

void UsageSampler::writeEnd(Date at) {
    if (!current_) return;
    const std::int64_t id = *current_->interval.id;
    if (minimumIntervalSeconds <= at.secondsSince(current_->interval.startedAt)) {
        store_.closeInterval(id, at);
    } else {
        store_.deleteInterval(id);
    }
}

TrackingSession UsageSampler::startSession(const std::string& name) {
    endSession();
    TrackingSession session;
    session.id = newUuid();
    session.name = name;
    session.startedAt = clock_.now();
    store_.saveSession(session);
    activeSessionID_ = session.id;
    splitCurrent();
    return session;
}

void UsageSampler::endSession() {
    auto session = activeSession();
    if (!session) return;
    session->state = TrackingSession::State::ended;
    session->endedAt = clock_.now();
    store_.saveSession(*session);
    activeSessionID_.reset();
    splitCurrent();
}

void UsageSampler::pauseSession() {
    auto session = activeSession();
    if (!session) return;
    session->state = TrackingSession::State::paused;
    store_.saveSession(*session);
    closeCurrent();
}

void UsageSampler::resumeSession() {
    auto session = activeSession();
    if (!session) return;
    session->state = TrackingSession::State::running;
    store_.saveSession(*session);
}

std::optional<TrackingSession> UsageSampler::activeSession() {
    if (!activeSessionID_) return std::nullopt;
    const auto sessions = store_.sessions();
    const auto found = std::ranges::find(sessions, *activeSessionID_, &TrackingSession::id);
    return found != sessions.end() ? std::optional(*found) : std::nullopt;
}

void UsageSampler::splitCurrent() {
    if (!current_) return;
    const Current before = *current_;
    closeCurrent();
    record(before.input, before.idle);
}

} // namespace lumnara
