#include "core/platform/linux/PomodoroReminder.h"

#include "core/async/Task.h"
#include "core/base/Files.h"
#include "core/base/Log.h"
#include "core/base/StrictJson.h"

#include <algorithm>
#include <exception>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>

namespace lumnara {

namespace {

/// The wall clock is looked at as often as that, in seconds: a machine that slept stops the loop's clock, and
/// notifications may come to a session late.
constexpr double lookAgain = 30;

void logPomodoro(const std::string& what) { log("Lumnara pomodoro: " + what); }

} // namespace

PomodoroReminder::PomodoroReminder(async::Loop& loop, UserNotifications& notifications,
                                   std::filesystem::path file)
    : loop_(loop),
      notifications_(notifications),
      file_(std::move(file)) {
    load();
    check();
}

void PomodoroReminder::start(int minutes, int breakMinutes) {
    delivery_.cancel();
    reminder_ = {loop_.date().plusSeconds(std::max(minutes * 60.0, 1.0)), breakMinutes};
    try {
        save();
    } catch (const std::system_error& error) {
        logPomodoro(std::string("a restart would lose its end: ") + error.what());
    }
    check();
}

std::optional<Date> PomodoroReminder::due() const {
    return reminder_ ? std::optional(reminder_->due) : std::nullopt;
}

void PomodoroReminder::load() {
    finishReplacement(file_.path());
    const auto reading = file_.read([this](const std::string& text) {
        const auto root = StrictJson::parse(text);
        const auto due = Date::fromISO8601(StrictJson::text(StrictJson::member(root, "due")));
        if (!due) throw JsonError("no ISO 8601 date");
        reminder_ = {*due, StrictJson::integer<int>(StrictJson::member(root, "breakMinutes"))};
    });
    // A damaged file is no loss: the next pomodoro may take its place.
    if (reading.failure || reading.found == KeptFile::Found::damage)
        logPomodoro("what was to come can't be read: " +
                    (reading.failure ? reading.failure->what() : reading.damage));
}

void PomodoroReminder::save() {
    const nlohmann::json root = {{"due", reminder_->due.iso8601()},
                                 {"breakMinutes", reminder_->breakMinutes}};
    file_.replace(root.dump(2) + "\n");
}

void PomodoroReminder::forget() {
    reminder_.reset();
    timer_.reset();
    std::error_code gone; // what can't be removed is long past by the next start
    std::filesystem::remove(file_.path(), gone);
}

void PomodoroReminder::checkIn(double seconds) {
    timer_ = std::make_unique<async::Delayed>(loop_, seconds, [this] { check(); });
}

void PomodoroReminder::check() {
    if (!reminder_) return;
    const double late = loop_.date().secondsSince(reminder_->due);
    if (late < 0) {
        checkIn(std::min(-late, lookAgain));
    } else if (late > longestDelay) {
        logPomodoro(fmt::format("its end at {} was not shown", reminder_->due.iso8601()));
        forget();
    } else {
        delivery_ = async::spawn(loop_, deliver(reminder_->breakMinutes));
    }
}

async::Task<> PomodoroReminder::deliver(int breakMinutes) {
    const auto context = co_await async::currentContext();
    if (context.stop.stop_requested()) co_return;
    const UserNotification notification{
        identifier, "Break time",
        fmt::format("Time to stretch and rest your eyes for {} minutes.", breakMinutes)};
    bool isShown = false;
    try {
        co_await notifications_.deliver(notification);
        isShown = true;
    } catch (const std::exception& error) {
        if (!context.stop.stop_requested()) logPomodoro(error.what());
    }
    if (context.stop.stop_requested()) co_return; // another pomodoro has begun, or the program ends
    if (isShown)
        forget();
    else
        checkIn(lookAgain);
}

} // namespace lumnara
