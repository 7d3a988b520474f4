#pragma once

#include "app/menubar/DesktopMenu.h"
#include "core/async/Signal.h"
#include "core/async/Timer.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

namespace lumnara {

/// The icon in the session's tray, where a host for it stands or comes later: the current desktop as its
/// tool tip and colour, the desktops as its menu. A click opens the Board. The loop and the catalog outlive
/// it.
class TrayIcon {
public:
    TrayIcon(async::Loop& loop, DesktopCatalog& catalog);
    ~TrayIcon();

    /// A text that goes away by itself, where the tray can show one.
    void showMessage(const QString& text, double seconds);

    std::function<void(const Desktop&)> onSwitch;
    std::function<void()> onOpenBoard;
    std::function<void()> onQuit;
    std::function<void(bool open)> onMenuTracking;

private:
    void appear();
    void refresh();
    void fillMenu();
    void addItem(const DesktopMenuItem& item);

    DesktopCatalog& catalog_;
    QMenu menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::unique_ptr<async::Repeating> hostCheck_;
    /// The menu is open and stands still; it is filled anew when it closes.
    bool menuOpen_ = false;
    async::Subscription displaysChanged_;
    async::Subscription errorChanged_;
    async::Subscription refreshed_;
};

} // namespace lumnara
