#include "app/qt/Surfaces.h"

#include "app/qt/WindowSystem.h"

#include <QApplication>

namespace lumnara {

Surfaces::Surfaces(AppState& state, BoardSettings settings, std::function<bool()> isComposited)
    : windows_(state.loop(), std::move(isComposited)),
      board_(state, windows_, std::move(settings)),
      tray_(state.loop(), state.catalog()),
      notice_(state.loop()) {
    QApplication::setQuitOnLastWindowClosed(false);
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
