#include "app/tracking/TrackingPage.h"

#include "core/base/Files.h"
#include "core/tracking/Database.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tracking/TrackingTest.h"

namespace lumnara {
namespace {

using testing::at;

class TrackingPageTest : public ::testing::Test {
protected:
    TrackingPageTest() {
        page.calendar = [] { return text::Calendar("en_GB", "UTC"); };
        for (const auto& [key, app, from, to] : {std::tuple("work", "Editor", -600, -300),
                                                 {"work", "Mail", -300, 0},
                                                 {"home", "Mail", -1500, -600}}) {
            Interval made = testing::interval(from, to);
            made.spaceKey = made.spaceName = key;
            made.appName = app;
            store.insert(made);
        }
        page.reload();
    }

    async::TestLoop loop;
    TrackingStore store{loop};
    SystemClock clock{loop};
    UsageSampler sampler{store, clock};
    TrackingPage page{loop, &store, &sampler, PlatformKind::windowManager};
};

TEST_F(TrackingPageTest, ListsDesktopsAndTheAppsOfOne) {
    ASSERT_EQ(page.rows().size(), 2U);
    EXPECT_EQ(page.rows()[0].spaceName, "home");
    EXPECT_EQ(page.rows()[0].active, 900);
    EXPECT_TRUE(page.expandedApps().empty());
    int changes = 0;
    const auto subscription = page.changed.subscribe([&] { ++changes; });
    page.toggleExpanded("work");
    EXPECT_EQ(page.expandedApps().size(), 2U);
    page.toggleExpanded("home");
    ASSERT_EQ(page.expandedApps().size(), 1U);
    EXPECT_EQ(page.expandedApps()[0].appName, "Mail");
    page.toggleExpanded("home");
    EXPECT_TRUE(page.expandedApps().empty());
    page.setRange(RangeChoice::yesterday);
    EXPECT_TRUE(page.rows().empty());
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(page.proposedFileName(), "Lumnara-yesterday.csv");
}

TEST_F(TrackingPageTest, StartsPausesAndEndsSessions) {
    page.startSession();
    page.sessionName = "Client";
    page.startSession();
    page.pauseSession();
    ASSERT_EQ(page.sessions().size(), 2U);
    EXPECT_TRUE(page.hasActiveSession());
    page.endSession();
    EXPECT_FALSE(page.hasActiveSession());
    std::string names;
    for (const TrackingSession& session : page.sessions()) names += session.name + " ";
    EXPECT_TRUE(names == "Client Session " || names == "Session Client ") << names;
}

TEST_F(TrackingPageTest, WithoutADatabaseItIsEmptyAndQuiet) {
    TrackingPage none(loop, nullptr, nullptr, PlatformKind::windowManager);
    none.reload();
    none.startSession();
    none.endSession();
    EXPECT_FALSE(none.isAvailable());
    EXPECT_TRUE(none.rows().empty());
}

TEST_F(TrackingPageTest, ExportsTheRangeWholeOrTellsWhy) {
    const testing::TemporaryFolder folder;
    page.includeApps = true;
    page.exportTo(folder / "report.csv");
    EXPECT_EQ(readFile(folder / "report.csv"),
              "Date,Space ID,Space Name,App,Active (min),Idle (min),Total (min)\r\n"
              "2026-01-05,home,home,Mail,15,0,15\r\n2026-01-05,work,work,Editor,5,0,5\r\n"
              "2026-01-05,work,work,Mail,5,0,5\r\n");
    try {
        page.exportTo(folder / "report.csv/below.csv");
        FAIL();
    } catch (const TrackingExportError& error) {
        EXPECT_EQ(error.path(), folder / "report.csv/below.csv");
        EXPECT_TRUE(error.sentence().ends_with(": Not a directory.")) << error.sentence();
    }
}

TEST_F(TrackingPageTest, WhatCannotBeReadIsShownAsEmptyAndWhatCannotBeWrittenIsTold) {
    store.database().execute("ALTER TABLE intervals RENAME TO elsewhere");
    page.reload();
    EXPECT_TRUE(page.rows().empty() && page.sessions().empty());
    EXPECT_THROW(page.exportTo("/dev/null"), DatabaseError);
    store.database().execute("ALTER TABLE elsewhere RENAME TO intervals");
    store.database().execute("PRAGMA query_only = ON");
    EXPECT_THROW(page.startSession(), DatabaseError);
    EXPECT_EQ(page.rows().size(), 2U) << "reloaded all the same";
}

} // namespace
} // namespace lumnara
