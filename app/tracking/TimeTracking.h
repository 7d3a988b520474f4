#pragma once

#include "app/settings/AppSettings.h"
#include "core/async/Timer.h"
#include "core/automation/Automation.h"
#include "core/catalog/Desktop.h"
#include "core/platform/Platform.h"
#include "core/tracking/IdleMonitor.h"
#include "core/tracking/UsageSampler.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Records where the user's time goes, while the setting is on: the database with its sampler, what tells
/// that the user is idle or the screen locked, and the heartbeat. A database that can't be opened costs the
/// recording and nothing else. What fails later loses one sample; the next one tries again. Main thread.
///
/// A sample holds for the moment at which it was taken and is written a little later: a transaction takes
/// long enough to be felt in the midst of a switch.
class TimeTracking {
public:
    /// Repairs what a crash left open. The database lies in the folder. All outlive this object.
    TimeTracking(async::Loop& loop, AppSettings& settings, Platform& platform,
                 const std::filesystem::path& dataFolder);

    /// Null when the database could not be opened.
    TrackingStore* store() { return store_ ? &*store_ : nullptr; }
    /// Null exactly when store() is.
    UsageSampler* sampler() { return sampler_ ? &*sampler_ : nullptr; }
    /// Why there is no database, as a sentence.
    const std::optional<std::string>& failure() const { return failure_; }

    /// What the user does may have changed in a way that no reading of the desktops tells: set once, before
    /// start().
    std::function<void()> onSampleWanted;
    /// Begins to beat, to watch for idleness and to follow the settings.
    void start();

    /// The user is on that desktop. Nothing is recorded while the setting is off, or without a desktop.
    void sample(const std::optional<Desktop>& focused);
    /// What an automation asks of the session. Throws DatabaseError.
    void carryOut(SessionOp op, const std::optional<std::string>& name);
    /// Closes what is open: the program ends.
    void stop();

private:
    /// Where the user was; the application is still to be asked for.
    struct Sample {
        SamplerInput input;
        bool idle = false;
        Date at;
    };

    void open(const std::filesystem::path& file);
    void setRecording(bool on);
    void write();

    async::Loop& loop_;
    AppSettings& settings_;
    Platform& platform_;
    IdleMonitor idle_;
    std::optional<TrackingStore> store_;
    SystemClock clock_;
    std::optional<UsageSampler> sampler_;
    std::optional<std::string> failure_;
    std::optional<async::Repeating> heartbeat_;
    std::vector<Sample> taken_;
    std::optional<async::Delayed> writing_;
    std::vector<async::Subscription> settingsChanged_;
};

} // namespace lumnara
