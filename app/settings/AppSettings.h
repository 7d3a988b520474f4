#pragma once

#include "app/settings/Setting.h"
#include "core/async/Signal.h"
#include "core/seams/DefaultsStore.h"
#include "core/seams/LoginItem.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// The one typed view of the user's preferences: each is an observable value, bound to its key of the store
/// both ways. Values are taken as they are; the ranges are the settings pages' business. Built before
/// everything that reads it. Main thread.
class AppSettings {
    DefaultsStore& d_;
    LoginItem* const loginItem_;

public:
    /// How the tiles of one display look.
    struct BoardAppearance {
        double tileWidth = 0;   ///< points
        double nameSize = 0;    ///< points
        double appIconSize = 0; ///< points
        bool showAppNames = false;

        bool operator==(const BoardAppearance&) const = default;
    };
    /// By display key, "Main" or a display's uuid.
    using BoardAppearances = std::map<std::string, BoardAppearance>;

    /// Reads every key. `loginItem` is null where the session has no such service. Both outlive this object.
    explicit AppSettings(DefaultsStore& defaults, LoginItem* loginItem = nullptr);

private:
    /// A JSON object from display key to an object of the four fields; damaged data counts as none.
    struct BoardAppearancesCoding {
        static std::optional<BoardAppearances> read(const DefaultsStore& defaults, std::string_view key);
        static void write(DefaultsStore& defaults, std::string_view key, const BoardAppearances& value);
    };

public:
    // The keys and defaults are promises to every settings file out there.

    Setting<MenuBarStyle> menuBarStyle{d_, "menuBar.style", MenuBarStyle::currentName};
    Setting<double> menuBarMaxWidth{d_, "menuBar.maxWidth", 240}; ///< points
    Setting<bool> showAllDisplaysInMenuBar{d_, "menuBar.showAllDisplays", false};
    Setting<bool> hideDimmedSpaces{d_, "menuBar.hideDimmed", true};
    Setting<bool> showColorsInMenuBar{d_, "menuBar.showColors", true};

    Setting<bool> instantSwitching{d_, "switching.instant", true};
    Setting<bool> restoreCursorAfterSwitch{d_, "switching.restoreCursor", true};
    Setting<double> gestureVelocity{d_, "switching.gestureVelocity", 2000};
    Setting<DisplayLinkMode> displayLinkMode{d_, "displays.linkMode", DisplayLinkMode::independent};

    Setting<bool> hasCompletedOnboarding{d_, "onboarding.completed", false};
    Setting<bool> tourCompleted{d_, "tour.completed", false};
    Setting<std::int64_t> tourStep{d_, "tour.step", 0};
    Setting<std::optional<std::string>> speechLocaleID{d_, "voice.locale"};

    Setting<bool> hideQuickSwitcherTips{d_, "quickSwitcher.hideTips", false};
    Setting<bool> boardModifierTap{d_, "board.modifierTap", false};
    Setting<bool> boardMissionControlKey{d_, "board.missionControlKey", false};
    Setting<BoardChord> boardChord{d_, "board.chord", BoardChord::controlOption};
    Setting<double> boardNameSize{d_, "board.nameSize", 18};       ///< points
    Setting<double> boardTileWidth{d_, "board.tileWidth", 196};    ///< points
    Setting<double> boardAppIconSize{d_, "board.appIconSize", 28}; ///< points
    Setting<bool> boardShowAppNames{d_, "board.showAppNames", true};
    Setting<bool> boardReorderMissionControl{d_, "board.reorderMissionControl", true};
    Setting<bool> boardOnEveryDisplay{d_, "board.everyDisplay", true};
    Setting<BoardAppearances, BoardAppearancesCoding> boardPerDisplay{d_, "board.perDisplay"};
    Setting<bool> windowPreviews{d_, "grid.windowPreviews", false};

    Setting<bool> trackTime{d_, "tracking.enabled", true};
    Setting<double> idleThreshold{d_, "tracking.idleThreshold", 300}; ///< seconds
    Setting<bool> showNotes{d_, "notes.enabled", true};

    Setting<bool> missionControlLabels{d_, "missionControl.labels", true};
    Setting<double> missionControlLabelFontSize{d_, "missionControl.fontSize", 13}; ///< points
    Setting<bool> missionControlLabelUsesColour{d_, "missionControl.useColour", false};
    Setting<double> missionControlLabelOffset{d_, "missionControl.offset", 0}; ///< points
    Setting<bool> missionControlLabelsNamedOnly{d_, "missionControl.namedOnly", true};

    Setting<bool> spaceHover{d_, "spaceHover.enabled", true};
    Setting<bool> spaceHoverBuiltInOnly{d_, "spaceHover.builtInOnly", false};
    Setting<bool> switchOverlay{d_, "switchOverlay.enabled", true};
    Setting<double> switchOverlayDuration{d_, "switchOverlay.duration", 1}; ///< seconds

    Setting<bool> dragToMove{d_, "dragToMove.enabled", true};
    Setting<bool> dragToMoveUsesBoard{d_, "dragToMove.usesBoard", true};
    Setting<bool> dragToMoveClickToPin{d_, "dragToMove.clickToPin", true};
    Setting<DragModifier> dragToMoveModifier{d_, "dragToMove.modifier", DragModifier::option};

    /// A wish that is kept and nothing more: no report is ever sent.
    Setting<bool> crashReports{d_, "privacy.crashReports", false};

    /// The display's own appearance, or the general one. The case of a uuid makes no difference.
    BoardAppearance boardAppearance(std::string_view displayKey) const;
    /// For one display, which then no longer follows the general settings; or those settings, with nothing.
    void setBoardAppearance(const std::optional<std::string>& displayKey, const BoardAppearance& value);

    /// What the session will do at the next login, read afresh.
    bool launchAtLogin() const;
    /// A failure is logged; launchAtLogin() tells what holds.
    void setLaunchAtLogin(bool launch);
    /// launchAtLogin() has to be read again.
    async::Signal<> launchAtLoginChanged;
};

} // namespace lumnara
