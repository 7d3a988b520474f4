#pragma once

#include "core/base/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// A range of time, from the first moment to just before the last.
struct DateRange {
    Date from;
    Date to;
    bool operator==(const DateRange&) const = default;
};

/// A named span of work, one row of the table "sessions".
struct TrackingSession {
    enum class State { running, paused, ended };

    std::string id; ///< an upper-case uuid
    std::string name;
    Date startedAt;
    std::optional<Date> endedAt; ///< absent while running or paused
    double pausedSeconds = 0;    ///< always 0: the state is a label, and time goes on counting
    State state = State::running;

    bool operator==(const TrackingSession&) const = default;
};

/// "running", "paused" or "ended", as the database has it.
std::string_view rawValue(TrackingSession::State state);

/// One stretch of time on one desktop in one app, one row of the table "intervals".
struct Interval {
    std::optional<std::int64_t> id;       ///< absent until inserted
    std::optional<std::string> sessionID; ///< the session that was active when the interval opened
    std::string spaceKey;
    std::string spaceName; ///< as it was when the interval opened
    std::string displayUUID;
    std::optional<std::string> appBundleID;
    std::optional<std::string> appName;
    Date startedAt;
    std::optional<Date> endedAt; ///< absent while open
    bool isIdle = false;         ///< the user was idle for the whole of it
    /// The last moment at which the running program knew the interval to be alive.
    std::optional<Date> lastHeartbeat;

    bool operator==(const Interval&) const = default;
};

/// One line of a report: a desktop, or an app on a desktop.
struct UsageRow {
    std::string key; ///< the desktop's key; with apps "<desktop's key>|<bundle id, or name, or unknown>"
    std::string spaceKey;
    std::string spaceName;              ///< the name in the latest interval of the range
    std::optional<std::string> appName; ///< absent in a report by desktop, and for an app that has no name
    double active = 0;                  ///< seconds
    double idle = 0;                    ///< seconds

    bool operator==(const UsageRow&) const = default;
};

} // namespace lumnara
