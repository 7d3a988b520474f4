#pragma once

#include "core/async/TaskHandle.h"
#include "core/async/Timer.h"
#include "core/base/KeptFile.h"
#include "core/seams/UserNotifications.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace lumnara {

/// The one notification at the end of a pomodoro. What is still to come stands in a file ("pomodoro.json")
/// and is scheduled again when the program starts: shown at once when its moment has just passed, dropped
/// when that is long ago. Main thread; loop and notifications outlive it.
class PomodoroReminder {
public:
    static constexpr const char* identifier = "lumnara.pomodoro";
    /// Seconds past its moment in which a reminder is still worth showing.
    static constexpr double longestDelay = 15 * 60;

    PomodoroReminder(async::Loop& loop, UserNotifications& notifications, std::filesystem::path file);

    /// In `minutes`, at least a second, from now; replaces one that is still to come. Where the file can't be
    /// written it lives in memory only, which is logged.
    void start(int minutes, int breakMinutes);
    /// When the one to come is due; nothing when there is none.
    std::optional<Date> due() const;

private:
    struct Reminder {
        Date due;
        int breakMinutes;
    };

    void load();
    void save();
    void forget();
    void checkIn(double seconds);
    void check();
    async::Task<> deliver(int breakMinutes);

    async::Loop& loop_;
    UserNotifications& notifications_;
    KeptFile file_;
    std::optional<Reminder> reminder_;
    std::unique_ptr<async::Delayed> timer_;
    async::TaskHandle delivery_;
};

} // namespace lumnara
