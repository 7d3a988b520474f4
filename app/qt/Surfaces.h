#pragma once

#include "app/AppState.h"
#include "app/board/QuickSwitcherController.h"
#include "app/menu/DesktopMenuCommands.h"
#include "app/overlay/SwitchOverlayController.h"
#include "app/qt/board/BoardWindows.h"
#include "app/qt/menu/RenameDialog.h"
#include "app/qt/menu/TrayIcon.h"
#include "app/qt/overlay/NoticeWindow.h"
#include "app/qt/settings/SettingsWindow.h"
#include "app/qt/windows/LayerShell.h"
#include "app/tracking/TrackingPage.h"
#include "core/async/Timer.h"
#include "core/automation/AutomationEditor.h"

#include <functional>
#include <memory>

namespace lumnara {

/// All that the user sees: the Board, the tray icon, the notices, the cards at a switch. Built after AppState
/// and taken down before it, while the application object lives.
class Surfaces {
public:
    /// `isComposited` tells whether a compositor blends windows now; none means that nothing is known of one.
    explicit Surfaces(AppState& state, std::function<bool()> isComposited = {});

    QuickSwitcherController& board() { return board_; }

    /// The Board, opened anew, has handed its first picture to the window system; once for each screen.
    async::Signal<>& boardPainted() { return windows_.painted; }

    /// The user asked to quit.
    std::function<void()> onQuit;

private:
    /// Whether anything of ours may stand over the windows; where the compositor places windows and has no
    /// layer shell, a card would be tiled like any other.
    bool hasCards() const;
    std::optional<QRect> areaInUse() const;
    void show(const Notice& notice);
    void choose(const DesktopMenuItem& item);
    void showSettings();
    void makeSettings();
    void rename(const Desktop& desktop);

    AppState& state_;
    BoardWindows windows_;
    QuickSwitcherController board_;
    DesktopMenuCommands commands_;
    TrayIcon tray_;
    LayerShell layers_;
    NoticeWindow notice_;
    SwitchOverlayController overlay_;
    AutomationEditor automationEditor_;
    TrackingPage trackingPage_;
    // Made when they are first wanted.
    std::unique_ptr<SettingsWindow> settings_;
    std::unique_ptr<RenameDialog> rename_;
    async::Subscription notices_;
    async::Delayed preparing_;
};

} // namespace lumnara
