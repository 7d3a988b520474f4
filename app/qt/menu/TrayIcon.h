#pragma once

#include "app/menu/DesktopMenu.h"
#include "app/qt/menu/TrayHost.h"
#include "app/settings/AppSettings.h"
#include "core/async/Signal.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>

namespace lumnara {

/// The icon in the session's tray, where a host for it stands or comes later: the current desktop as its
/// tool tip and colour, the desktops as its menu. A click opens the Board. The catalog and the settings
/// outlive it, and the catalog follows the settings' link mode before it does.
class TrayIcon {
public:
    TrayIcon(DesktopCatalog& catalog, AppSettings& settings);
    ~TrayIcon();

    /// A text that goes away by itself, where the tray can show one.
    void showMessage(const QString& text, double seconds);

    /// A line of the menu.
    std::function<void(const DesktopMenuItem&)> onChosen;
    std::function<void()> onOpenBoard;
    std::function<void(bool open)> onMenuTracking;

private:
    void appear();
    void refresh();

    DesktopCatalog& catalog_;
    QMenu menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    /// The menu is open and stands still; it is filled anew when it closes.
    bool menuOpen_ = false;
    async::Subscription displaysChanged_;
    async::Subscription errorChanged_;
    async::Subscription refreshed_;
    async::Subscription linkModeChanged_;
    TrayHost host_;
};

} // namespace lumnara
