#include "app/qt/settings/SettingsWindow.h"

#include "app/qt/settings/GeneralPage.h"
#include "tests/qt/Pictures.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/ScriptedLoginItem.h"

#include <QApplication>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QSlider>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class SettingsWindowTest : public ::testing::Test {
protected:
    SettingsWindowTest() { window.add("General", new GeneralPage(settings)); }

    QCheckBox& box(const char* name) { return *window.findChild<QCheckBox*>(name); }
    QSlider& slider(const char* name) { return *window.findChild<QSlider*>(name); }
    /// What stands behind the slider.
    QString valueText(const char* name) {
        return slider(name).parentWidget()->findChildren<QLabel*>().back()->text();
    }

    MemoryDefaultsStore defaults;
    ScriptedLoginItem loginItem;
    AppSettings settings{defaults, &loginItem};
    SettingsWindow window;
};

TEST_F(SettingsWindowTest, writesWhatTheUserChoosesAndNothingElse) {
    window.present();
    window.present();
    EXPECT_EQ(defaults.writes, 0);
    EXPECT_TRUE(box("boardOnEveryDisplay").isChecked());

    box("linkDisplays").click();
    EXPECT_EQ(defaults.value("displays.linkMode"), DefaultsValue("linked"));
    box("linkDisplays").click();
    EXPECT_EQ(defaults.value("displays.linkMode"), DefaultsValue("independent"));
    box("boardOnEveryDisplay").click();
    EXPECT_EQ(defaults.value("board.everyDisplay"), DefaultsValue(false));
    box("switchOverlay").click();
    EXPECT_EQ(defaults.value("switchOverlay.enabled"), DefaultsValue(false));
    EXPECT_FALSE(slider("switchOverlayDuration").isEnabled()) << "without the name there is no time for it";
    EXPECT_EQ(defaults.writes, 4);

    struct Number {
        const char* name;
        const char* key;
        double least, next, most;
    };
    for (const Number& number : {Number{"switchOverlayDuration", "switchOverlay.duration", 0.5, 0.6, 3},
                                 Number{"boardTileWidth", "board.tileWidth", 140, 142, 320},
                                 Number{"boardNameSize", "board.nameSize", 12, 13, 28}}) {
        slider(number.name).triggerAction(QSlider::SliderToMinimum);
        EXPECT_EQ(defaults.value(number.key), DefaultsValue(number.least));
        slider(number.name).triggerAction(QSlider::SliderSingleStepAdd);
        EXPECT_EQ(defaults.value(number.key), DefaultsValue(number.next));
        slider(number.name).triggerAction(QSlider::SliderToMaximum);
        EXPECT_EQ(defaults.value(number.key), DefaultsValue(number.most));
    }
    EXPECT_FALSE(*settings.boardOnEveryDisplay);
    EXPECT_EQ(settings.boardAppearance("A"), (AppSettings::BoardAppearance{320, 28, 28, true}));
}

TEST_F(SettingsWindowTest, showsWhatAnotherProgramChanges) {
    defaults.changeFromElsewhere("displays.linkMode", "linked");
    EXPECT_TRUE(box("linkDisplays").isChecked());
    defaults.changeFromElsewhere("switchOverlay.enabled", false);
    EXPECT_FALSE(box("switchOverlay").isChecked());
    EXPECT_FALSE(slider("switchOverlayDuration").isEnabled());
    defaults.changeFromElsewhere("switchOverlay.duration", 2.5);
    EXPECT_EQ(slider("switchOverlayDuration").value(), 20);
    EXPECT_EQ(valueText("switchOverlayDuration"), "2.5 s");
    defaults.changeFromElsewhere("board.nameSize", std::int64_t{20});
    EXPECT_EQ(valueText("boardNameSize"), "20 pt");
    defaults.changeFromElsewhere("board.tileWidth", 500.0);
    EXPECT_EQ(slider("boardTileWidth").value(), slider("boardTileWidth").maximum());
    EXPECT_EQ(valueText("boardTileWidth"), "500 pt") << "the truth, though it can't be chosen here";
    defaults.changeFromElsewhere("board.tileWidth", std::nullopt);
    EXPECT_EQ(valueText("boardTileWidth"), "196 pt");
    EXPECT_EQ(defaults.writes, 0) << "nothing is written back";
}

TEST_F(SettingsWindowTest, tellsTheTrueStateOfTheLoginItem) {
    box("launchAtLogin").click();
    EXPECT_TRUE(loginItem.registered);
    loginItem.registered = false;
    window.present();
    EXPECT_FALSE(box("launchAtLogin").isChecked()) << "read afresh";
    loginItem.refuses = true;
    box("launchAtLogin").click();
    EXPECT_FALSE(box("launchAtLogin").isChecked());
}

TEST_F(SettingsWindowTest, isUsedByKeyboard) {
    window.present();
    QStringList order;
    const QWidget* first = window.nextInFocusChain();
    for (const QWidget* widget = first;;) {
        if (widget->focusPolicy() & Qt::TabFocus && widget->isVisible() && widget != &window)
            order << widget->objectName();
        widget = widget->nextInFocusChain();
        if (widget == first) break;
    }
    EXPECT_EQ(order,
              (QStringList{"settingsPages", "linkDisplays", "switchOverlay", "switchOverlayDuration",
                           "boardOnEveryDisplay", "boardTileWidth", "boardNameSize", "launchAtLogin"}));
    for (const QSlider* each : window.findChildren<QSlider*>()) {
        const auto labels = each->parentWidget()->findChildren<QLabel*>();
        EXPECT_EQ(labels.front()->buddy(), each);
    }
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(&window, &escape);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(SettingsWindowTest, showsAllTextsInBothAppearances) {
    defaults.changeFromElsewhere("displays.linkMode", "linked");
    for (const bool dark : {false, true}) {
        window.setPalette(panelPalette(dark));
        window.present();
        QApplication::processEvents();
        for (const QLabel* label : window.findChildren<QLabel*>())
            EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
        for (const QCheckBox* each : window.findChildren<QCheckBox*>())
            EXPECT_GE(each->width(), each->sizeHint().width()) << each->text().toStdString();
        savePicture(window, dark ? "settings-dark" : "settings-light");
    }
}

} // namespace
} // namespace lumnara::testing
