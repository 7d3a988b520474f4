#pragma once

#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/base/Failure.h"
#include "core/model/PlatformKind.h"
#include "core/tracking/CSVExporter.h"
#include "core/tracking/TrackingRange.h"
#include "core/tracking/UsageSampler.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The report could not be written to where the user wanted it.
class TrackingExportError : public Failure {
public:
    TrackingExportError(std::filesystem::path path, const std::string& reason);

    const std::filesystem::path& path() const { return path_; }
    bool operator==(const TrackingExportError& other) const {
        return path_ == other.path_ && sentence() == other.sentence();
    }

private:
    std::filesystem::path path_;
};

/// What the page of recorded times shows and does, without its layout. The two settings on it, whether to
/// record and when the user counts as idle, are the settings' own. Main thread.
class TrackingPage {
public:
    static constexpr const char* nothingRecorded = "Nothing recorded in this range yet.";

    /// `store` and `sampler` are null when the database could not be opened; the page then shows nothing
    /// recorded. All outlive the page. reload() fills it.
    TrackingPage(const async::Loop& loop, TrackingStore* store, UsageSampler* sampler, PlatformKind kind);

    const std::string& heading() const { return heading_; }

    /// The user's calendar, asked for at each use since the machine may move to another time zone.
    std::function<text::Calendar()> calendar = text::Calendar::ofUser;
    bool includeApps = false;
    CSVGrouping grouping = CSVGrouping::day;
    std::string sessionName; ///< as typed in the field

    RangeChoice range() const { return range_; }
    const std::vector<UsageRow>& rows() const { return rows_; } ///< by desktop
    const std::vector<TrackingSession>& sessions() const { return sessions_; }
    const std::optional<std::string>& expandedSpace() const { return expandedSpace_; }
    /// The apps to list under the expanded desktop; none while no desktop is.
    std::vector<UsageRow> expandedApps() const;
    /// There is a database to record in, so the buttons do something.
    bool isAvailable() const { return store_ && sampler_; }
    bool hasActiveSession() const { return sampler_ && sampler_->activeSessionID(); }

    /// rows(), sessions() or what is expanded has changed.
    async::Signal<> changed;

    /// Reads the database anew; what can't be read is shown as empty.
    void reload();
    /// Reloads.
    void setRange(RangeChoice range);
    /// Shows the apps of the desktop, or hides them when they are shown.
    void toggleExpanded(const std::string& spaceKey);

    // Each reloads the page, also when it throws DatabaseError; they do nothing without a database.
    /// Named by the field, or "Session" when that is empty.
    void startSession();
    void pauseSession();
    void endSession();

    /// "Lumnara-today.csv"
    std::string proposedFileName() const;
    /// Writes the range as CSV, the file whole or not at all. Throws DatabaseError or TrackingExportError.
    void exportTo(const std::filesystem::path& path) const;

private:
    void change(const std::function<void(UsageSampler&)>& edit);

    const std::string heading_;
    const async::Loop& loop_;
    TrackingStore* const store_;
    UsageSampler* const sampler_;
    RangeChoice range_ = RangeChoice::today;
    std::vector<UsageRow> rows_;
    std::vector<UsageRow> appRows_;
    std::vector<TrackingSession> sessions_;
    std::optional<std::string> expandedSpace_;
};

} // namespace lumnara
