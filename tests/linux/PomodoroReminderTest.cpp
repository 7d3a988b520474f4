#include "core/platform/linux/PomodoroReminder.h"
#include "core/async/TestLoop.h"
#include "tests/support/LogLines.h"
#include "tests/support/RecordingNotifications.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>

namespace lumnara {
namespace {

class PomodoroReminderTest : public ::testing::Test {
protected:
    PomodoroReminderTest() { restart(); }
    /// As the program does: the old one is gone before the new one reads the file.
    void restart() {
        reminder_.reset();
        reminder_.emplace(loop_, notifications_, file_);
        loop_.runUntilIdle();
    }
    /// The program is off for so long.
    void pauseFor(double seconds) {
        reminder_.reset();
        loop_.advance(seconds);
        restart();
    }
    std::size_t shown() const { return notifications_.delivered.size(); }

    testing::LogLines log_;
    testing::TemporaryFolder folder_;
    const std::filesystem::path file_ = folder_.path() / "data" / "pomodoro.json";
    async::TestLoop loop_;
    testing::RecordingNotifications notifications_;
    std::optional<PomodoroReminder> reminder_;
};

TEST_F(PomodoroReminderTest, OneNotificationComesAtTheEnd) {
    reminder_->start(25, 5);
    loop_.advance(25 * 60 - 0.1);
    EXPECT_EQ(shown(), 0u);
    loop_.advance(0.2);
    ASSERT_EQ(shown(), 1u);
    EXPECT_EQ(notifications_.delivered[0],
              (UserNotification{"lumnara.pomodoro", "Break time",
                                "Time to stretch and rest your eyes for 5 minutes."}));
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_FALSE(reminder_->due());

    reminder_->start(0, 5);
    loop_.advance(0.9);
    EXPECT_EQ(shown(), 1u);
    loop_.advance(0.2);
    EXPECT_EQ(shown(), 2u);
    EXPECT_EQ(loop_.timerCount(), 0u);
}

TEST_F(PomodoroReminderTest, AnotherPomodoroReplacesTheOneToCome) {
    reminder_->start(1, 5);
    loop_.advance(50);
    reminder_->start(2, 10);
    loop_.advance(119);
    EXPECT_EQ(shown(), 0u);
    loop_.advance(2);
    ASSERT_EQ(shown(), 1u);
    EXPECT_NE(notifications_.delivered[0].body.find("10 minutes"), std::string::npos);
}

TEST_F(PomodoroReminderTest, ARestartKeepsItShowsOneJustMissedAndDropsAnOldOne) {
    reminder_->start(25, 5);
    pauseFor(60);
    EXPECT_EQ(reminder_->due(), loop_.date().plusSeconds(24 * 60));
    loop_.advance(24 * 60);
    EXPECT_EQ(shown(), 1u);

    reminder_->start(25, 5);
    pauseFor(25 * 60 + PomodoroReminder::longestDelay);
    EXPECT_EQ(shown(), 2u) << "at once";

    reminder_->start(25, 5);
    pauseFor(25 * 60 + PomodoroReminder::longestDelay + 1);
    EXPECT_EQ(shown(), 2u);
    EXPECT_FALSE(std::filesystem::exists(file_));
    EXPECT_EQ(log_.take().size(), 1u);
}

TEST_F(PomodoroReminderTest, WhereNotificationsComeLateItTriesAgainForAWhile) {
    notifications_.isAvailable = false;
    reminder_->start(1, 5);
    loop_.advance(100);
    EXPECT_TRUE(reminder_->due());
    notifications_.isAvailable = true;
    loop_.advance(30);
    EXPECT_EQ(shown(), 1u);

    notifications_.isAvailable = false;
    reminder_->start(1, 5);
    loop_.runUntilDone(); // it gives up in the end
    EXPECT_EQ(shown(), 1u);
    EXPECT_FALSE(reminder_->due());
    EXPECT_GT(log_.take().size(), 1u);
}

} // namespace
} // namespace lumnara
