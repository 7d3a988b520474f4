#include "app/qt/Surfaces.h"

#include "app/qt/OverlayWindow.h"
#include "app/qt/WindowSystem.h"

#include <QApplication>

namespace lumnara {

Surfaces::Surfaces(AppState& state, std::function<bool()> isComposited)
    : windows_(state.loop(), std::move(isComposited)),
      board_(state, windows_, boardSettings(state.settings())),
      tray_(state.loop(), state.catalog()),
      notice_(state.loop()),
      overlay_(
          {state.loop(), state.catalog(), state.settings(), state.platform().screens.get(), state.notices(),
           state.onDesktopSwitched, state.linkedSwitching().onSettled},
          [] { return std::make_unique<OverlayWindow>(); },
          // Where the compositor places windows, there is no card: it would be tiled like any other.
          [this](const ScreenInfo& screen) { return placesOwnWindows() && !board_.covers(screen); }) {
    QApplication::setQuitOnLastWindowClosed(false);
    board_.onShown = [this] { overlay_.giveWay(); };
    tray_.onSwitch = [&state](const Desktop& desktop) { state.switchTo(desktop); };
    tray_.onOpenBoard = [this] { board_.toggle(); };
    tray_.onQuit = [this] {
        if (onQuit) onQuit();
    };
    tray_.onMenuTracking = [this](bool open) { windows_.trackMenu(open); };
    notices_ = state.notices().subscribe([this](const Notice& notice) { show(notice); });
}

void Surfaces::show(const Notice& notice) {
    // Where the compositor places windows, a window of ours would be tiled like any other.
    if (placesOwnWindows()) {
        notice_.showNotice(notice);
    } else {
        tray_.showMessage(QString::fromStdString(notice.text), notice.seconds);
    }
}

} // namespace lumnara
