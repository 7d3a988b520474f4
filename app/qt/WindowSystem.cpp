#include "app/qt/WindowSystem.h"

#include "core/platform/Screens.h"

#include <QGuiApplication>
#include <QScreen>

namespace lumnara {

bool placesOwnWindows() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

QScreen* screenFor(const ScreenInfo& info) {
    const auto screens = QGuiApplication::screens();
    for (QScreen* screen : screens) {
        if (screen->name().toStdString() == info.connector) return screen;
    }
    for (QScreen* screen : screens) {
        if (QPointF(screen->geometry().topLeft()) == QPointF(info.frame.x, info.frame.y)) return screen;
    }
    return QGuiApplication::primaryScreen();
}

} // namespace lumnara
