#include "core/tracking/UsageSampler.h"

#include "core/tracking/Database.h"
#include "tests/tracking/TrackingTest.h"

#include <cmath>
#include <vector>

namespace lumnara {
namespace {

using testing::at;
using testing::failureOf;

class ScriptedClock : public TrackingClock {
public:
    Date now() const override { return moment; }
    Date moment = at(0);
};

class UsageSamplerTest : public ::testing::Test {
protected:
    /// "space/app from-to" for each row, with "i" for idle, "o" for open and the session's number behind it.
    std::string rows() {
        const auto sessions = store.sessions();
        const auto second = [](Date date) { return std::to_string(std::lround(date.secondsSince(at(0)))); };
        std::string all;
        for (const Interval& row : store.intervals(at(-1e6), at(1e6))) {
            all += row.spaceName + "/" + row.appName.value_or("-") + " " + second(row.startedAt) + "-" +
                   (row.endedAt ? second(*row.endedAt) : "o") + (row.isIdle ? "i" : "");
            for (std::size_t i = 0; i < sessions.size(); ++i)
                if (row.sessionID == sessions[i].id) all += " " + sessions[i].name;
            all += ";";
        }
        return all;
    }
    void record(double second, const SamplerInput& input, bool idle = false) {
        clock.moment = at(second);
        sampler.record(input, idle);
    }

    async::TestLoop loop;
    TrackingStore store{loop};
    ScriptedClock clock;
    UsageSampler sampler{store, clock};
    const SamplerInput work{"work", "Work", "D", "org.editor", "Editor"};
};

TEST_F(UsageSamplerTest, SplitsTheTimeAtEveryChangeAndOnlyThere) {
    record(0, work);
    const std::int64_t written = store.database().totalChanges();
    record(10, work);
    record(20, work);
    EXPECT_EQ(store.database().totalChanges(), written);

    SamplerInput next = work;
    std::vector<std::pair<SamplerInput, bool>> changes;
    changes.emplace_back(next, true);
    next.spaceName = "Works";
    changes.emplace_back(next, true);
    next.spaceKey = "other";
    changes.emplace_back(next, true);
    next.displayUUID = "E";
    changes.emplace_back(next, true);
    next.appBundleID = std::nullopt;
    changes.emplace_back(next, true);
    next.appName = std::nullopt;
    changes.emplace_back(next, true);
    next.appName = "";
    changes.emplace_back(next, false);
    double second = 20;
    for (const auto& [input, idle] : changes) record(second += 10, input, idle);
    clock.moment = at(100);
    sampler.closeCurrent();
    sampler.closeCurrent();
    EXPECT_EQ(rows(), "Work/Editor 0-30;Work/Editor 30-40i;Works/Editor 40-50i;Works/Editor 50-60i;"
                      "Works/Editor 60-70i;Works/Editor 70-80i;Works/- 80-90i;Works/ 90-100;");
}

TEST_F(UsageSamplerTest, AGlimpseLeavesNoTrace) {
    SamplerInput other = work;
    other.spaceName = "Other";
    record(0, work);
    record(1, other);
    record(1.99, work);
    record(10, other);
    record(5, work); // the clock was put back
    EXPECT_EQ(rows(), "Work/Editor 0-1;Work/Editor 2-10;Work/Editor 5-o;");
}

TEST_F(UsageSamplerTest, RecordsNothingBehindALockedScreen) {
    bool locked = false;
    sampler.isSuspendedByScreenLock = [&] { return locked; };
    record(0, work);
    locked = true;
    record(10, work);
    record(20, work, true);
    EXPECT_FALSE(sampler.current());
    sampler.beat();
    locked = false;
    record(30, work);
    EXPECT_EQ(rows(), "Work/Editor 0-10;Work/Editor 30-o;");
}

TEST_F(UsageSamplerTest, ACrashCostsOnePeriodAtMost) {
    record(0, work);
    clock.moment = at(60);
    sampler.beat();
    store.insert(testing::interval(70, std::nullopt));
    UsageSampler next(store, clock);
    next.beat();
    next.repairAfterCrash();
    EXPECT_EQ(rows(), "Work/Editor 0-60;Work/- 70-190;");
}

TEST_F(UsageSamplerTest, ASessionCountsFromItsStartToItsEnd) {
    record(0, work);
    clock.moment = at(10);
    const TrackingSession a = sampler.startSession("a");
    clock.moment = at(20);
    const TrackingSession b = sampler.startSession("b");
    EXPECT_NE(a.id, b.id);
    EXPECT_EQ(sampler.activeSessionID(), b.id);
    clock.moment = at(30);
    sampler.endSession();
    clock.moment = at(40);
    sampler.endSession();
    EXPECT_EQ(rows(), "Work/Editor 0-10;Work/Editor 10-20 a;Work/Editor 20-30 b;Work/Editor 30-o;");
    const auto sessions = store.sessions();
    ASSERT_EQ(sessions.size(), 2U);
    EXPECT_EQ(sessions[1], (TrackingSession{a.id, "a", at(10), at(20), 0, TrackingSession::State::ended}));
    EXPECT_EQ(sessions[0], (TrackingSession{b.id, "b", at(20), at(30), 0, TrackingSession::State::ended}));
}

TEST_F(UsageSamplerTest, APauseIsALabelAndTimeGoesOnCounting) {
    sampler.pauseSession();
    sampler.resumeSession();
    EXPECT_TRUE(store.sessions().empty());
    sampler.startSession("a");
    record(0, work);
    clock.moment = at(10);
    sampler.pauseSession();
    EXPECT_EQ(store.sessions()[0].state, TrackingSession::State::paused);
    EXPECT_FALSE(sampler.current());
    record(20, work);
    clock.moment = at(30);
    sampler.resumeSession();
    EXPECT_EQ(store.sessions()[0].state, TrackingSession::State::running);
    EXPECT_EQ(store.sessions()[0].pausedSeconds, 0);
    EXPECT_EQ(rows(), "Work/Editor 0-10 a;Work/Editor 20-o a;");

    store.database().execute("DELETE FROM sessions");
    sampler.endSession();
    EXPECT_TRUE(sampler.activeSessionID()) << "a session that is gone can't be ended";
    record(40, work);
    EXPECT_EQ(rows(), "Work/Editor 0-10;Work/Editor 20-o;");
}

TEST_F(UsageSamplerTest, AWriteThatFailsIsTriedAgainByTheNextCall) {
    SamplerInput other = work;
    other.spaceName = "Other";
    record(0, work);
    store.database().execute("PRAGMA query_only = ON");
    for (const auto& attempt : std::vector<std::function<void()>>{
             [&] { record(10, other); }, [&] { sampler.beat(); }, [&] { sampler.startSession("a"); }})
        EXPECT_EQ(failureOf(attempt), DatabaseError::Case::readOnly);
    EXPECT_EQ(sampler.current()->input, work);
    EXPECT_FALSE(sampler.activeSessionID());
    store.database().execute("PRAGMA query_only = OFF");
    record(20, other);
    EXPECT_EQ(rows(), "Work/Editor 0-20;Other/Editor 20-o;");
}

} // namespace
} // namespace lumnara
