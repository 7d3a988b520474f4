#include "app/tracking/TimeTracking.h"

#include "core/base/Failure.h"
#include "core/base/Log.h"
#include "core/seams/IdleSource.h"
#include "core/seams/SessionProbe.h"
#include "core/seams/Workspace.h"

#include <exception>
#include <utility>

namespace lumnara {

namespace {

/// Seconds between two looks at whether the user is idle.
constexpr double idlePeriod = 5;
/// Seconds from the first sample to the writing of all that have come by then: a switch is over.
constexpr double writeDelay = 0.3;

/// Runs what a failure of the database must not stop; what is missing is one sample.
template <class Write> void attempt(const Write& write) {
    try {
        write();
    } catch (const DatabaseError&) {
    }
}

} // namespace

TimeTracking::TimeTracking(async::Loop& loop, AppSettings& settings, Platform& platform,
                           const std::filesystem::path& dataFolder)
    : loop_(loop),
      settings_(settings),
      platform_(platform),
      idle_(loop, *settings.idleThreshold, platform.idleSource.get()),
      clock_(loop) {
    open(dataFolder / TrackingStore::fileName);
}

void TimeTracking::open(const std::filesystem::path& file) {
    try {
        store_.emplace(loop_, file);
    } catch (const std::exception&) {
        failure_ = sentenceOf(std::current_exception());
        log("Tracking unavailable: " + *failure_);
        return;
    }
    sampler_.emplace(*store_, clock_);
    if (SessionProbe* session = platform_.sessionProbe.get())
        sampler_->isSuspendedByScreenLock = [session] { return session->isScreenLocked(); };
    attempt([this] { sampler_->repairAfterCrash(); });
}

void TimeTracking::start() {
    if (!sampler_) return;
    heartbeat_.emplace(loop_, sampler_->heartbeat, [this] { attempt([this] { sampler_->beat(); }); });
    idle_.onChange = [this](bool) {
        if (onSampleWanted) onSampleWanted();
    };
    settingsChanged_.push_back(
        settings_.idleThreshold.subscribe([this](double seconds) { idle_.threshold = seconds; }));
    settingsChanged_.push_back(settings_.trackTime.subscribe([this](bool on) { setRecording(on); }));
    if (*settings_.trackTime) idle_.start(idlePeriod);
}

void TimeTracking::setRecording(bool on) {
    if (on) {
        idle_.start(idlePeriod);
        if (onSampleWanted) onSampleWanted();
    } else {
        idle_.stop();
        write();
        attempt([this] { sampler_->closeCurrent(); });
    }
}

void TimeTracking::sample(const std::optional<Desktop>& focused) {
    if (!sampler_ || !*settings_.trackTime || !focused) return;
    taken_.push_back({{focused->key, focused->displayName(), focused->display.uuid, {}, {}},
                      idle_.isIdle(),
                      loop_.date()});
    if (!writing_) writing_.emplace(loop_, writeDelay, [this] { write(); });
}

/// The application is the one in front by now, which after a switch is the one that was switched to.
void TimeTracking::write() {
    writing_.reset();
    std::vector<Sample> taken = std::exchange(taken_, {});
    if (taken.empty()) return;
    const auto app = platform_.workspace ? platform_.workspace->frontmostApplication() : std::nullopt;
    for (Sample& sample : taken) {
        if (app) {
            sample.input.appBundleID = app->bundleID;
            if (!app->name.empty()) sample.input.appName = app->name;
        }
        attempt([&] { sampler_->record(sample.input, sample.idle, sample.at); });
    }
}

void TimeTracking::carryOut(SessionOp op, const std::optional<std::string>& name) {
    if (!sampler_) return;
    write();
    switch (op) {
    case SessionOp::start: sampler_->startSession(name.value_or(defaultSessionName)); break;
    case SessionOp::pause: sampler_->pauseSession(); break;
    case SessionOp::stop: sampler_->endSession(); break;
    }
}

void TimeTracking::stop() {
    write();
    if (sampler_) attempt([this] { sampler_->closeCurrent(); });
}

} // namespace lumnara
