#include "app/qt/tracking/TimePage.h"

#include "app/qt/settings/SettingsWindow.h"
#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "tests/qt/Pictures.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/TemporaryFolder.h"

#include <QApplication>
#include <QCheckBox>
#include <QMouseEvent>
#include <fstream>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class TimePageTest : public ::testing::Test {
protected:
    TimePageTest() {
        page.calendar = [] { return text::Calendar("en_GB", "UTC"); };
        loop.advance(12 * 3600);
        widget = new TimePage(settings, page);
        widget->onFailure = [this](const QString& sentence) { failures << sentence; };
        window.add("Time", widget);
    }

    /// So many minutes before now, for so long.
    void record(const char* space, const char* app, double startMinutes, double minutes, bool idle = false) {
        const Date start = loop.date().plusSeconds(-startMinutes * 60);
        Interval interval;
        interval.spaceKey = std::string("key of ") + space;
        interval.spaceName = space;
        interval.displayUUID = "A";
        interval.appName = app;
        interval.startedAt = start;
        interval.endedAt = start.plusSeconds(minutes * 60);
        interval.isIdle = idle;
        store.insert(interval);
    }
    template <class T> T& find(const char* name) { return *window.findChild<T*>(name); }
    QStringList rows() {
        QStringList texts;
        auto& list = find<UsageList>("usage");
        for (int row = 0; row < list.topLevelItemCount(); ++row) {
            const auto* item = list.topLevelItem(row);
            texts << item->data(0, Qt::AccessibleTextRole).toString();
            for (int app = 0; app < item->childCount(); ++app)
                texts << "  " + item->child(app)->data(0, Qt::AccessibleTextRole).toString();
        }
        return texts;
    }

    async::TestLoop loop;
    TemporaryFolder folder;
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    TrackingStore store{loop};
    SystemClock clock{loop};
    UsageSampler sampler{store, clock};
    TrackingPage page{loop, &store, &sampler, PlatformKind::windowManager};
    QStringList failures;
    SettingsWindow window;
    TimePage* widget = nullptr;
};

TEST_F(TimePageTest, showsTheReportAndOpensADesktop) {
    window.present();
    EXPECT_EQ(rows(), QStringList());
    record("Mail", "Letters", 300, 90);
    record("Writing", "Editor", 200, 125);
    record("Writing", "Browser", 70, 15, true);
    record("Writing", "Browser", 50, 10);
    record("A desktop with a rather long name that has to give way", "Terminal", 30, 1);
    window.present();
    EXPECT_EQ(rows(), (QStringList{"Writing, 2h 30m, 15m of it idle", "Mail, 1h 30m",
                                   "A desktop with a rather long name that has to give way, 1m"}));
    auto& list = find<UsageList>("usage");
    const QPoint first = list.visualItemRect(list.topLevelItem(0)).center();
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const auto held = type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
        QMouseEvent event(type, first, list.viewport()->mapToGlobal(first), Qt::LeftButton, held, {});
        QApplication::sendEvent(list.viewport(), &event);
    }
    QApplication::processEvents();
    EXPECT_EQ(rows().mid(0, 3), (QStringList{"Writing, 2h 30m, 15m of it idle", "  Editor, 2h 05m",
                                             "  Browser, 25m, 15m of it idle"}));
    find<QLineEdit>("sessionName").setText("Client A");
    find<QPushButton>("startSession").click();
    loop.advance(3600);
    find<QPushButton>("pauseSession").click();
    for (const bool dark : {false, true}) {
        window.setPalette(panelPalette(dark));
        savePicture(window, dark ? "time-dark" : "time-light");
    }
    find<QComboBox>("range").setCurrentIndex(1);
    Q_EMIT find<QComboBox>("range").activated(1);
    EXPECT_EQ(rows(), QStringList()) << "nothing was recorded yesterday";
}

TEST_F(TimePageTest, runsSessionsAndTellsOfAFailedExport) {
    window.present();
    EXPECT_FALSE(find<QPushButton>("endSession").isEnabled());
    find<QPushButton>("startSession").click();
    EXPECT_EQ(store.sessions().at(0).name, "Session");
    EXPECT_TRUE(find<QPushButton>("endSession").isEnabled());
    find<QPushButton>("endSession").click();
    EXPECT_EQ(store.sessions().at(0).state, TrackingSession::State::ended);
    EXPECT_FALSE(find<QPushButton>("endSession").isEnabled());

    record("Mail, private", "Letters", 60, 30);
    QString proposed;
    widget->chooseFile = [&](const QString& name) {
        proposed = name;
        return QString::fromStdString((folder.path() / "out.csv").string());
    };
    find<QCheckBox>("includeApps").click();
    find<QPushButton>("exportCSV").click();
    EXPECT_EQ(proposed, "Lumnara-today.csv");
    std::ifstream file(folder.path() / "out.csv");
    const std::string csv((std::istreambuf_iterator<char>(file)), {});
    EXPECT_NE(csv.find("\"Mail, private\",Letters,30,0,30\r\n"), std::string::npos) << csv;
    EXPECT_TRUE(failures.isEmpty());

    widget->chooseFile = [&](const QString&) { // inside what is a file
        return QString::fromStdString((folder.path() / "out.csv" / "again.csv").string());
    };
    find<QPushButton>("exportCSV").click();
    ASSERT_EQ(failures.size(), 1);
    EXPECT_TRUE(failures.front().startsWith("The report could not be written to "));
}

TEST_F(TimePageTest, bindsItsSettings) {
    find<QCheckBox>("trackTime").click();
    EXPECT_EQ(defaults.value("tracking.enabled"), DefaultsValue(false));
    EXPECT_FALSE(find<QComboBox>("idleThreshold").isEnabled());
    auto& idle = find<QComboBox>("idleThreshold");
    EXPECT_EQ(idle.currentText(), "5 minutes");
    idle.setCurrentIndex(0);
    Q_EMIT idle.activated(0);
    EXPECT_EQ(defaults.value("tracking.idleThreshold"), DefaultsValue(60.0));
    defaults.changeFromElsewhere("tracking.idleThreshold", 90.0);
    EXPECT_EQ(idle.currentText(), "1.5 minutes");
}

TEST(TimePage, withoutADatabaseShowsNothingRecorded) {
    async::TestLoop loop;
    MemoryDefaultsStore defaults;
    AppSettings settings(defaults);
    TrackingPage page(loop, nullptr, nullptr, PlatformKind::windowManager);
    TimePage widget(settings, page);
    for (const char* name : {"startSession", "pauseSession", "endSession", "exportCSV"})
        EXPECT_FALSE(widget.findChild<QPushButton*>(name)->isEnabled()) << name;
    EXPECT_FALSE(widget.findChild<QCheckBox*>("trackTime")->isEnabled());
}

} // namespace
} // namespace lumnara::testing
