#include "app/qt/automation/AutomationsPage.h"

#include "app/qt/look/Symbols.h"
#include "app/qt/settings/SettingsWindow.h"
#include "core/base/Files.h"
#include "tests/qt/OpenBoard.h"
#include "tests/qt/Pictures.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/RecordingExecutor.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QWheelEvent>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class AutomationsPageTest : public ::testing::Test {
protected:
    AutomationsPageTest() { window.add("Automations", page); }

    void present() {
        window.present();
        QApplication::processEvents();
    }
    template <class T> T& in(QWidget& parent, const char* name) {
        T* found = nullptr; // what has been let go waits for its end, hidden
        for (T* each : parent.findChildren<T*>(name))
            if (!each->isHidden()) found = each;
        if (!found) throw std::runtime_error(std::string("nothing is called ") + name);
        return *found;
    }
    AutomationCard& card(int place = 0) {
        std::vector<AutomationCard*> shown;
        for (QWidget* each : page->findChildren<QWidget*>("automation"))
            if (!each->isHidden()) shown.push_back(static_cast<AutomationCard*>(each));
        std::ranges::sort(shown, {}, [](QWidget* each) { return each->y(); });
        return *shown.at(static_cast<std::size_t>(place));
    }
    ActionRow& row(std::size_t place) {
        return static_cast<ActionRow&>(
            *card().findChildren<QWidget*>("action").at(static_cast<qsizetype>(place)));
    }
    QString text(const char* name) {
        QLabel* label = page->findChild<QLabel*>(name);
        return label->isVisibleTo(page) ? label->text() : QString();
    }
    void pick(QWidget& parent, const char* button, const char* line) {
        for (QAction* action : in<QPushButton>(parent, button).menu()->actions())
            if (action->text() == line) return action->trigger();
        FAIL() << line;
    }
    void picture(QWidget& widget, const QString& name) {
        settle();
        savePicture(widget, name);
    }
    /// A change of height goes up a layout a turn.
    void settle() {
        for (int turn = 0; turn < 8; ++turn) QApplication::processEvents();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(window.focusWidget(), &event);
    }
    void type(QWidget& parent, const char* field, const QString& entered) {
        auto& line = in<QLineEdit>(parent, field);
        line.setFocus();
        line.selectAll();
        for (const QChar& each : entered.isEmpty() ? QString(QChar(8)) : entered) {
            QKeyEvent event(QEvent::KeyPress, each == QChar(8) ? Qt::Key_Backspace : 0, {}, QString(each));
            QApplication::sendEvent(&line, &event);
        }
    }
    std::vector<std::string> labels(const std::string& id) {
        std::vector<std::string> result;
        for (const AutomationAction& action : store.find(id)->actions) result.push_back(labelOf(action));
        return result;
    }
    /// What stands in the form below its field.
    std::string refusal() { return in<QLabel>(*page, "refusal").text().toStdString(); }
    std::string focused() { return window.focusWidget()->accessibleName().toStdString(); }

    OpenBoard board{{{"Mail", "", "Music"}}};
    AutomationStore store{board.loop, board.folder / "automations.json"};
    RecordingExecutor executor;
    AutomationRunner runner{store, executor};
    AutomationEditor editor{board.loop, store, runner};
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults, nullptr};
    AutomationsPage* page = new AutomationsPage(settings, board.catalog, store, editor);
    SettingsWindow window;
};

TEST_F(AutomationsPageTest, followsTheDesktopsAndTheFile) {
    auto& desktops = in<QComboBox>(*page, "desktop");
    const auto lines = [&] {
        QStringList texts;
        for (int place = 0; place < desktops.count(); ++place) texts << desktops.itemText(place);
        return texts;
    };
    EXPECT_EQ(lines(), (QStringList{"Mail", "Music", "Desktop 2"}));
    EXPECT_EQ(desktops.currentText(), "Mail") << "the focused one";
    EXPECT_TRUE(text("noAutomations").startsWith("“Mail” has no automations yet."));
    editor.addPreset("2", 0);
    editor.addPreset("gone", 0);
    EXPECT_EQ(lines(), (QStringList{"Mail", "Music", "Desktop 2 (1)", "Desktop (1), waiting"}));
    board.catalog.rename("2", "Ink");
    EXPECT_EQ(lines(), (QStringList{"Mail", "Ink (1)", "Music", "Desktop (1), waiting"}));
    EXPECT_EQ(desktops.currentText(), "Mail");
    EXPECT_TRUE(page->choose("2"));
    EXPECT_EQ(in<QLineEdit>(card(), "name").text(), "Focus");
    EXPECT_TRUE(page->choose("gone"));
    EXPECT_TRUE(text("waiting").startsWith("This desktop is not there at present."));
    EXPECT_FALSE(page->choose("nothing"));
    store.removeAll("gone");
    EXPECT_EQ(desktops.currentText(), "Mail");
}

TEST_F(AutomationsPageTest, hasALinkGroupOnceAndSaysWhatWaitsForItsEnd) {
    OpenBoard linked{{{"Mail", "Code"}, {"Web", ""}}};
    linked.catalog.setLinkMode(DisplayLinkMode::linked);
    editor.addEmpty("3");
    linked.catalog.link("1", "3");
    const std::string group = linked.catalog.desktopOfSpace("1")->key;
    editor.addEmpty(group);
    std::vector<std::string> lines;
    for (const AutomationDesktop& each : automationDesktops(linked.catalog, store))
        lines.push_back(each.title + (each.automations ? " +" : "") + (each.isLive ? "" : " waiting"));
    EXPECT_EQ(lines,
              (std::vector<std::string>{"Mail +", "Code – Display", "Desktop 2 – Display", "Web + waiting"}));
    EXPECT_TRUE(waitingReason(linked.catalog, "3").starts_with("This desktop is linked at present."));
}

TEST_F(AutomationsPageTest, addsAndEditsInPlace) {
    present();
    pick(*page, "addAutomation", "Meeting");
    EXPECT_EQ(window.focusWidget(), &in<QLineEdit>(card(), "name"));
    pick(*page, "addAutomation", "Empty Automation");
    const std::string id = editor.automations("1").at(1).id;
    AutomationCard& edited = card(1);
    type(edited, "name", "  Calls ");
    press(Qt::Key_Return);
    EXPECT_EQ(store.find(id)->name, "Calls");
    EXPECT_EQ(in<QLineEdit>(edited, "name").text(), "Calls");
    type(edited, "name", "");
    press(Qt::Key_Return);
    EXPECT_EQ(store.find(id)->name, "Calls");
    EXPECT_TRUE(std::ranges::any_of(edited.findChildren<QLabel*>(), [](QLabel* label) {
        return label->isVisible() && label->text() == "Give the automation a name.";
    }));
    EXPECT_FALSE(page->choose("3")) << "with what can't stand";
    press(Qt::Key_Escape);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(in<QLineEdit>(edited, "name").text(), "Calls");

    auto& trigger = in<QComboBox>(edited, "trigger");
    EXPECT_EQ(trigger.currentText(), "On click");
    QWheelEvent wheel({5, 5}, trigger.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&trigger, &wheel);
    EXPECT_EQ(store.find(id)->trigger, AutomationTrigger::onClick) << "the page scrolls";
    trigger.setFocus();
    press(Qt::Key_Up);
    EXPECT_EQ(store.find(id)->trigger, AutomationTrigger::onExit);
    in<QCheckBox>(edited, "enabled").click();
    EXPECT_FALSE(store.find(id)->isEnabled);
    for (QAction* icon : in<SymbolButton>(edited, "icon").menu()->actions())
        if (icon->text() == "Cup") icon->trigger();
    EXPECT_EQ(store.find(id)->icon, "cup.and.saucer.fill");
    for (const IconChoice& choice : automationIcons)
        EXPECT_TRUE(hasSymbol(QString::fromLatin1(choice.symbol.data()))) << choice.symbol;
    for (const ActionRules::Kind& kind : ActionRules::kinds())
        EXPECT_TRUE(hasSymbol(QString::fromLatin1(symbolOf(kind.blank).data()))) << kind.title;
}

TEST_F(AutomationsPageTest, isPassedThroughInReadingOrder) {
    present();
    const std::string first = editor.addEmpty("1");
    const std::string second = editor.addEmpty("1");
    for (const double seconds : {1, 2}) editor.addAction(first, WaitAction{seconds});
    editor.addAction(second, WaitAction{3});
    editor.remove(first);
    in<QPushButton>(*page, "undo").click();
    row(0).setFocus();
    press(Qt::Key_Return);
    QStringList order;
    const QWidget* start = &in<QComboBox>(*page, "desktop");
    const QWidget* stop = start;
    do {
        if (stop->focusPolicy() & Qt::TabFocus && stop->isVisible() && !stop->objectName().startsWith("qt_"))
            order << (stop->objectName() == "action" ? stop->accessibleName() : stop->objectName());
        stop = stop->nextInFocusChain();
    } while (stop != start);
    const QStringList head{"icon", "name", "trigger", "enabled"}, foot{"addAction", "remove", "run"};
    EXPECT_EQ(order, QStringList({"desktop", "addAutomation"}) + head +
                         QStringList({"Wait 1s", "seconds", "cancelAction", "saveAction", "Wait 2s"}) + foot +
                         head + QStringList("Wait 3s") + foot + QStringList("settingsPages"));
}

TEST_F(AutomationsPageTest, takesEveryKindOfActionFromItsFields) {
    present();
    const std::string id = editor.addEmpty("1");
    page->choosePath = [](QWidget*, const QString& from, bool folder) {
        return folder && from.isEmpty() ? QString("/tmp") : QString();
    };
    const std::vector<AutomationAction> entered = {OpenAppAction{"firefox", "Fox"},
                                                   OpenPathAction{"/tmp"},
                                                   OpenURLAction{"https://example.org/ü"},
                                                   RunShortcutAction{"Tea"},
                                                   RunShellAction{"a\n  b"},
                                                   AppleScriptAction{"beep"},
                                                   PomodoroAction{50, 0},
                                                   SessionAction{SessionOp::stop, std::nullopt},
                                                   WaitAction{2.5}};
    for (std::size_t place = 0; place < entered.size(); ++place) {
        pick(card(), "addAction", std::string(ActionRules::kinds()[place].title).c_str());
        auto& form = in<ActionForm>(*page, "actionForm");
        switch (place) {
        case 0:
            type(form, "app", "firefox");
            type(form, "appName", "Fox");
            break;
        case 1:
            for (QAction* line : in<QPushButton>(form, "choosePath").menu()->actions()) line->trigger();
            break;
        case 2: type(form, "url", " https://example.org/ü "); break;
        case 3: type(form, "shortcut", "Tea"); break;
        case 4: in<QPlainTextEdit>(form, "script").setPlainText("a\n  b"); break;
        case 5: in<QPlainTextEdit>(form, "script").setPlainText("beep"); break;
        case 6:
            in<QSpinBox>(form, "minutes").setValue(50);
            in<QSpinBox>(form, "breakMinutes").setValue(0);
            break;
        case 7: in<QComboBox>(form, "sessionOp").setCurrentIndex(2); break;
        case 8: in<QDoubleSpinBox>(form, "seconds").setValue(2.5); break;
        }
        picture(form, QStringLiteral("automations-kind-%1").arg(place));
        press(Qt::Key_Return, place == 4 || place == 5 ? Qt::ControlModifier : Qt::NoModifier);
    }
    EXPECT_EQ(store.find(id)->actions, entered);
    for (std::size_t place = 0; place < entered.size(); ++place) { // opened and left as they are
        row(place).setFocus();
        press(Qt::Key_Return);
        EXPECT_EQ(in<ActionForm>(*page, "actionForm").action(), entered[place]);
        press(Qt::Key_Escape);
        EXPECT_EQ(focused().substr(0, 4), labelOf(entered[place]).substr(0, 4)) << "back on the row";
    }
    EXPECT_TRUE(window.isVisible());
}

TEST_F(AutomationsPageTest, refusesBadInputAndKeepsIt) {
    present();
    const std::string id = editor.addEmpty("1");
    editor.addAction(id, WaitAction{1});
    pick(card(), "addAction", "Open Web Address");
    type(*page, "url", "example");
    in<QPushButton>(*page, "saveAction").click();
    EXPECT_EQ(refusal(), "Enter a whole address, such as https://example.org.");
    const std::string refused = "the form holds what has been entered";
    pick(card(), "addAction", "Wait");
    EXPECT_EQ(in<QLineEdit>(*page, "url").text(), "example") << refused;
    EXPECT_FALSE(page->choose("3")) << refused;
    in<QPushButton>(card(), "run").click();
    board.loop.runUntilIdle();
    EXPECT_FALSE(editor.isRunning(id)) << refused;
    editor.setEnabled(id, false);
    store.load();
    EXPECT_EQ(in<QLineEdit>(*page, "url").text(), "example") << refused;
    EXPECT_EQ(labels(id), (std::vector<std::string>{"Wait 1s"}));
    type(*page, "url", "https://example.org");
    EXPECT_TRUE(page->choose("3")) << "what is good is taken over";
    EXPECT_EQ(labels(id), (std::vector<std::string>{"Wait 1s", "Open https://example.org"}));

    page->choose("1");
    row(0).setFocus();
    press(Qt::Key_F2);
    in<QDoubleSpinBox>(*page, "seconds").setValue(31);
    press(Qt::Key_Return);
    EXPECT_EQ(refusal(), "A wait lasts from 0 to 30 seconds; a longer one would be cut off.");
    in<QDoubleSpinBox>(*page, "seconds").setValue(9);
    Automation elsewhere = *store.find(id);
    elsewhere.actions.front() = PomodoroAction{1, 1};
    store.upsert(elsewhere);
    press(Qt::Key_Return);
    EXPECT_EQ(labels(id),
              (std::vector<std::string>{"Pomodoro 1/1 min", "Open https://example.org", "Wait 9s"}))
        << "what came in between isn't overwritten";
}

TEST_F(AutomationsPageTest, reordersAndRemovesByKeyboardWithUndo) {
    present();
    const std::string id = editor.addEmpty("1");
    for (const double seconds : {1, 2, 3}) editor.addAction(id, WaitAction{seconds});
    row(0).setFocus();
    press(Qt::Key_Up, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(focused(), "Wait 1s");
    press(Qt::Key_Down, Qt::AltModifier);
    press(Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(labels(id), (std::vector<std::string>{"Wait 2s", "Wait 3s", "Wait 1s"}));
    press(Qt::Key_Up);
    EXPECT_EQ(focused(), "Wait 3s");
    press(Qt::Key_Delete);
    EXPECT_EQ(focused(), "Wait 1s");
    EXPECT_EQ(text("removed"), "Removed “Wait 3s” of “New Automation”.");
    in<QPushButton>(*page, "undo").click();
    EXPECT_EQ(labels(id), (std::vector<std::string>{"Wait 2s", "Wait 3s", "Wait 1s"}));
    EXPECT_EQ(text("removed"), "");

    pick(card(), "addAction", "Pomodoro");
    in<QSpinBox>(*page, "minutes").setValue(7);
    in<QPushButton>(card(), "remove").click();
    EXPECT_EQ(store.find(id), nullptr);
    EXPECT_EQ(text("removed"), "Removed “New Automation”.");
    page->choose("3");
    EXPECT_EQ(text("removed"), "");
    page->choose("1");
    in<QPushButton>(*page, "undo").click();
    EXPECT_EQ(labels(id).back(), "Pomodoro 7/5 min");
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(page->findChildren<QWidget*>("action").size(), 4);
}

TEST_F(AutomationsPageTest, runsCancelsAndReports) {
    present();
    const std::string id = editor.addEmpty("1");
    for (const char* script : {"fine", "fail", "hang"}) editor.addAction(id, RunShellAction{script});
    auto& run = in<QPushButton>(card(), "run");
    run.click();
    board.loop.runUntilIdle();
    EXPECT_EQ(run.text(), "Cancel");
    picture(window, "automations-running");
    EXPECT_TRUE(in<QProgressBar>(*page, "progress").isVisible());
    page->choose("3");
    page->choose("1");
    EXPECT_EQ(in<QPushButton>(card(), "run").text(), "Cancel") << "it goes on";
    board.loop.advance(31);
    EXPECT_EQ(in<QPushButton>(card(), "run").text(), "Run Now");
    EXPECT_EQ(in<QLabel>(card(), "result").text(), "1 of 3 actions succeeded.");
    EXPECT_EQ(in<QLabel>(card(), "failures").text(), "Run a shell script: Shell script failed: exit 3\n"
                                                     "Run a shell script: Run a shell script took too long.");
    in<QPushButton>(card(), "run").click();
    board.loop.runUntilIdle();
    EXPECT_THROW(in<QLabel>(card(), "failures"), std::runtime_error) << "those of the run before";
    in<QPushButton>(card(), "run").click();
    board.loop.runUntilIdle();
    EXPECT_EQ(in<QLabel>(card(), "result").text(), "The run was cancelled.");
    EXPECT_EQ(executor.calls.back(), "hang cancelled");
}

TEST_F(AutomationsPageTest, saysWhatIsWrongWithTheFile) {
    present();
    EXPECT_EQ(text("notice"), "");
    const std::string newer = R"({"schemaVersion": 2})";
    replaceFile(store.url(), newer);
    store.load();
    EXPECT_EQ(text("notice"), "automations.json uses schema 2, which this version cannot read.");
    EXPECT_FALSE(in<QPushButton>(*page, "addAutomation").isEnabled());
    replaceFile(store.url(), "{");
    in<QPushButton>(*page, "tryAgain").click();
    ASSERT_TRUE(store.recoveredFromCorruptFile());
    EXPECT_TRUE(text("notice").endsWith(QString::fromStdString(store.recoveredFromCorruptFile()->string())));
    EXPECT_TRUE(in<QPushButton>(*page, "addAutomation").isEnabled());
    picture(window, "automations-recovered");

    std::filesystem::remove(store.url());
    std::filesystem::create_directory(store.url());
    pick(*page, "addAutomation", "Break");
    EXPECT_EQ(editor.automations("1").size(), 1U);
    EXPECT_TRUE(text("notice").startsWith("The automations could not be saved: ")) << "and holds";
    type(card(), "name", "Break");
    press(Qt::Key_Return);
    picture(window, "automations-unsaved");
    EXPECT_TRUE(text("notice").contains("could not be saved")) << "nothing has been saved since";
    std::filesystem::remove(store.url());
    in<QPushButton>(*page, "tryAgain").click();
    EXPECT_FALSE(text("notice").contains("could not be saved"));
    EXPECT_TRUE(std::filesystem::is_regular_file(store.url()));
}

TEST_F(AutomationsPageTest, isLegibleInBothAppearances) {
    const std::string id = editor.addPreset("1", 1);
    const std::string longName = "Everything that has to be opened before the Monday morning meeting begins";
    editor.rename(id, longName);
    editor.addAction(id,
                     OpenPathAction{"~/Documents/Clients/A rather long folder/and a longer one/notes.txt"});
    editor.addAction(id, RunShellAction{"fail"});
    editor.addAction(id, SessionAction{SessionOp::start, "Consulting"});
    editor.addPreset("1", 2);
    editor.removeAction(id, 1);
    editor.runNow(id);
    board.loop.runUntilIdle();
    board.catalog.rename("3", std::string(40, 'W'));
    for (const bool dark : {false, true}) {
        const QString suffix = dark ? "dark" : "light";
        window.setPalette(panelPalette(dark));
        window.resize(680, 760);
        present();
        row(1).setFocus();
        picture(window, "automations-" + suffix);
        press(Qt::Key_Return);
        type(*page, "path", "Documents");
        press(Qt::Key_Return);
        settle();
        for (const QLabel* label : page->findChildren<QLabel*>())
            EXPECT_TRUE(!label->isVisible() || label->height() >= label->heightForWidth(label->width()))
                << label->text().toStdString();
        picture(window, "automations-form-" + suffix);
        press(Qt::Key_Escape);
        window.resize(680, 640);
        pick(card(1), "addAction", "Run Shell Script");
        in<QPlainTextEdit>(*page, "script").setPlainText("notify-send 'Tea'\nsleep 3");
        settle();
        const QWidget& form = in<QWidget>(*page, "actionForm");
        EXPECT_TRUE(window.rect().contains(QRect(form.mapTo(&window, QPoint()), form.size())))
            << "scrolled to";
        picture(window, "automations-script-" + suffix);
        press(Qt::Key_Escape);
        page->choose("3");
        picture(window, "automations-none-" + suffix);
        page->choose("1");
    }
}

} // namespace
} // namespace lumnara::testing
