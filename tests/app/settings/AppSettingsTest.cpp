#include "app/settings/AppSettings.h"

#include "tests/support/LogLines.h"
#include "tests/support/MemoryDefaultsStore.h"
#include "tests/support/ScriptedLoginItem.h"

#include <gtest/gtest.h>
#include <vector>

namespace lumnara {
namespace {

using testing::MemoryDefaultsStore;
using testing::ScriptedLoginItem;
using BoardAppearance = AppSettings::BoardAppearance;

TEST(AppSettings, WritesItsDefaultsUnderTheKeysAndTypesOfTheFile) {
    MemoryDefaultsStore defaults;
    AppSettings s(defaults);
    EXPECT_EQ(defaults.writes, 0) << "reading writes nothing";

    const auto touch = [](auto&... settings) { (settings.set(settings.get()), ...); };
    touch(s.menuBarStyle, s.menuBarMaxWidth, s.showAllDisplaysInMenuBar, s.hideDimmedSpaces,
          s.showColorsInMenuBar, s.instantSwitching, s.displayLinkMode, s.restoreCursorAfterSwitch,
          s.gestureVelocity, s.hasCompletedOnboarding, s.speechLocaleID, s.hideQuickSwitcherTips,
          s.boardModifierTap, s.boardMissionControlKey, s.boardChord, s.boardNameSize, s.boardTileWidth,
          s.dragToMoveUsesBoard, s.boardAppIconSize, s.boardShowAppNames, s.boardReorderMissionControl,
          s.boardOnEveryDisplay, s.boardPerDisplay, s.windowPreviews, s.trackTime, s.idleThreshold,
          s.showNotes, s.missionControlLabels, s.missionControlLabelFontSize, s.missionControlLabelUsesColour,
          s.missionControlLabelOffset, s.missionControlLabelsNamedOnly, s.spaceHover, s.spaceHoverBuiltInOnly,
          s.switchOverlay, s.switchOverlayDuration, s.dragToMove, s.dragToMoveClickToPin,
          s.dragToMoveModifier, s.crashReports, s.tourCompleted, s.tourStep);
    EXPECT_EQ(defaults.writes, 42);
    const decltype(defaults.values) expected = {
        {"menuBar.style", "currentName"},
        {"menuBar.maxWidth", 240.0},
        {"menuBar.showAllDisplays", false},
        {"menuBar.hideDimmed", true},
        {"menuBar.showColors", true},
        {"switching.instant", true},
        {"displays.linkMode", "independent"},
        {"switching.restoreCursor", true},
        {"switching.gestureVelocity", 2000.0},
        {"onboarding.completed", false},
        {"quickSwitcher.hideTips", false},
        {"board.modifierTap", false},
        {"board.missionControlKey", false},
        {"board.chord", "controlOption"},
        {"board.nameSize", 18.0},
        {"board.tileWidth", 196.0},
        {"dragToMove.usesBoard", true},
        {"board.appIconSize", 28.0},
        {"board.showAppNames", true},
        {"board.reorderMissionControl", true},
        {"board.everyDisplay", true},
        {"board.perDisplay", DefaultsData{"{}"}},
        {"grid.windowPreviews", false},
        {"tracking.enabled", true},
        {"tracking.idleThreshold", 300.0},
        {"notes.enabled", true},
        {"missionControl.labels", true},
        {"missionControl.fontSize", 13.0},
        {"missionControl.useColour", false},
        {"missionControl.offset", 0.0},
        {"missionControl.namedOnly", true},
        {"spaceHover.enabled", true},
        {"spaceHover.builtInOnly", false},
        {"switchOverlay.enabled", true},
        {"switchOverlay.duration", 1.0},
        {"dragToMove.enabled", true},
        {"dragToMove.clickToPin", true},
        {"dragToMove.modifier", "option"},
        {"privacy.crashReports", false},
        {"tour.completed", false},
        {"tour.step", std::int64_t{0}},
    };
    EXPECT_EQ(defaults.values, expected) << "but for the speech locale, which has none";
}

TEST(AppSettings, ReadsWhatIsStoredAndTakesAnythingElseForTheDefault) {
    MemoryDefaultsStore defaults;
    defaults.values = {{"switching.instant", false},
                       {"menuBar.hideDimmed", std::int64_t{0}},
                       {"menuBar.style", "fireworks"},
                       {"board.chord", "optionTwice"},
                       {"displays.linkMode", "linked"},
                       {"dragToMove.modifier", true},
                       {"menuBar.maxWidth", "wide"},
                       {"board.nameSize", std::int64_t{20}},
                       {"tour.step", 2.0},
                       {"voice.locale", "de-DE"}};
    const auto before = defaults.values;
    AppSettings settings(defaults);
    EXPECT_EQ(*settings.instantSwitching, false);
    EXPECT_EQ(*settings.hideDimmedSpaces, true);
    EXPECT_EQ(*settings.menuBarStyle, MenuBarStyle::currentName);
    EXPECT_EQ(*settings.boardChord, BoardChord::optionTwice);
    EXPECT_EQ(*settings.displayLinkMode, DisplayLinkMode::linked);
    EXPECT_EQ(*settings.dragToMoveModifier, DragModifier::option);
    EXPECT_EQ(*settings.menuBarMaxWidth, 240);
    EXPECT_EQ(*settings.boardNameSize, 20);
    EXPECT_EQ(*settings.tourStep, 0);
    EXPECT_EQ(*settings.speechLocaleID, "de-DE");
    EXPECT_EQ(defaults.values, before);

    settings.menuBarStyle.set(MenuBarStyle::currentName);
    settings.displayLinkMode.set(DisplayLinkMode::independent);
    settings.speechLocaleID.set(std::nullopt);
    EXPECT_EQ(defaults.value("menuBar.style"), DefaultsValue("currentName"));
    EXPECT_EQ(defaults.value("displays.linkMode"), DefaultsValue("independent"));
    EXPECT_FALSE(defaults.value("voice.locale"));
}

TEST(AppSettings, TakesChangesFromElsewhereWithoutWritingThemBack) {
    MemoryDefaultsStore defaults;
    AppSettings settings(defaults);
    std::vector<double> widths;
    const auto told =
        settings.boardTileWidth.subscribe([&](const double& width) { widths.push_back(width); });
    defaults.changeFromElsewhere("board.tileWidth", 250.0);
    defaults.changeFromElsewhere("board.tileWidth", 250.0);
    defaults.changeFromElsewhere("board.nameSize", 30.0);
    defaults.changeFromElsewhere("board.tileWidth", std::nullopt);
    EXPECT_EQ(widths, (std::vector<double>{250, 196}));
    EXPECT_EQ(*settings.boardNameSize, 30);
    EXPECT_EQ(defaults.writes, 0);

    // A subscriber that holds a value within bounds has the last word, in the store too.
    const auto bounded = settings.boardTileWidth.subscribe([&](const double& width) {
        if (width > 300) settings.boardTileWidth.set(300);
    });
    settings.boardTileWidth.set(400);
    EXPECT_EQ(*settings.boardTileWidth, 300);
    EXPECT_EQ(defaults.value("board.tileWidth"), DefaultsValue(300.0));
}

TEST(AppSettings, ADisplayFollowsTheGeneralAppearanceUntilItHasItsOwn) {
    MemoryDefaultsStore defaults;
    AppSettings settings(defaults);
    EXPECT_EQ(settings.boardAppearance("Main"), (BoardAppearance{196, 18, 28, true}));
    settings.setBoardAppearance(std::nullopt, {150, 12, 20, false});
    EXPECT_EQ(settings.boardAppearance("AA-1"), (BoardAppearance{150, 12, 20, false}));
    EXPECT_EQ(defaults.value("board.appIconSize"), DefaultsValue(20.0));

    const BoardAppearance own{300, 24, 40, true};
    settings.setBoardAppearance("AA-1", {1, 1, 1, false});
    settings.setBoardAppearance("aa-1", own);
    settings.boardTileWidth.set(170);
    EXPECT_EQ(settings.boardAppearance("Aa-1").tileWidth, 300);
    EXPECT_EQ(settings.boardAppearance("BB-2").tileWidth, 170);
    EXPECT_EQ(defaults.value("board.perDisplay"),
              DefaultsValue(DefaultsData{
                  R"({"AA-1":{"appIconSize":40.0,"nameSize":24.0,"showAppNames":true,"tileWidth":300.0}})"}));

    AppSettings later(defaults);
    EXPECT_EQ(*later.boardPerDisplay, (AppSettings::BoardAppearances{{"AA-1", own}}));
    for (const char* damaged :
         {"", "[]", "{\"AA-1\":", R"({"AA-1":{"appIconSize":40,"nameSize":24,"tileWidth":300}})",
          R"({"AA-1":{"appIconSize":40,"nameSize":24,"showAppNames":1,"tileWidth":300}})",
          R"({"AA-1":{"appIconSize":"40","nameSize":24,"showAppNames":true,"tileWidth":300}})"}) {
        defaults.changeFromElsewhere("board.perDisplay", DefaultsData{damaged});
        EXPECT_TRUE(later.boardPerDisplay->empty()) << damaged;
    }
}

TEST(AppSettings, LaunchAtLoginTellsTheTrueState) {
    MemoryDefaultsStore defaults;
    testing::LogLines log;
    ScriptedLoginItem item;
    AppSettings settings(defaults, &item);
    std::vector<bool> read;
    const auto told =
        settings.launchAtLoginChanged.subscribe([&] { read.push_back(settings.launchAtLogin()); });
    settings.setLaunchAtLogin(true);
    item.refuses = true;
    settings.setLaunchAtLogin(false);
    EXPECT_EQ(read, (std::vector<bool>{true, true}));
    EXPECT_EQ(log.take(), (std::vector<std::string>{"Launch at login change failed: the disk is full"}));

    AppSettings elsewhere(defaults);
    elsewhere.setLaunchAtLogin(true);
    EXPECT_FALSE(elsewhere.launchAtLogin());
    EXPECT_EQ(log.take().size(), 1u);
    EXPECT_EQ(defaults.writes, 0);
}

} // namespace
} // namespace lumnara
