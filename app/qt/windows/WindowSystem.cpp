#include "app/qt/windows/WindowSystem.h"

#include "core/seams/Screens.h"

#include <QEvent>
#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <cmath>

namespace lumnara {

namespace {

class ConfigureWatch : public QObject {
public:
    ConfigureWatch(QWindow& watched, QWidget& drawn) : drawn_(drawn) { watched.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Expose) drawn_.update();
        return false;
    }

private:
    QWidget& drawn_;
};

} // namespace

bool placesOwnWindows() { return QGuiApplication::platformName() == QLatin1String("xcb"); }

QScreen* screenFor(const ScreenInfo& info) {
    const auto screens = QGuiApplication::screens();
    if (info.connector.empty()) {
        const Point middle = info.frame.middle();
        for (QScreen* screen : screens) {
            const QRectF frame(screen->geometry().topLeft(),
                               QSizeF(screen->geometry().size()) * unitsPerPoint(*screen));
            if (frame.contains(middle.x, middle.y)) return screen;
        }
        return QGuiApplication::primaryScreen();
    }
    for (QScreen* screen : screens) {
        if (screen->name().toStdString() == info.connector) return screen;
    }
    for (QScreen* screen : screens) {
        if (QPointF(screen->geometry().topLeft()) == QPointF(info.frame.x, info.frame.y)) return screen;
    }
    return QGuiApplication::primaryScreen();
}

QRect areaOf(const ScreenInfo& info) {
    const QScreen* screen = screenFor(info);
    if (!info.connector.empty()) return screen->geometry();
    const QPointF origin = screen->geometry().topLeft();
    const double units = unitsPerPoint(*screen);
    return QRectF(origin + (QPointF(info.frame.x, info.frame.y) - origin) / units,
                  QSizeF(info.frame.width, info.frame.height) / units)
        .toRect();
}

double unitsPerPoint(const QScreen& screen) { return placesOwnWindows() ? screen.devicePixelRatio() : 1; }

Point arrangementPoint(const QPointF& global) {
    const QScreen* screen = QGuiApplication::screenAt(global.toPoint());
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QPointF origin = screen->geometry().topLeft();
    const QPointF place = origin + (global - origin) * unitsPerPoint(*screen);
    return {std::round(place.x()), std::round(place.y())};
}

std::unique_ptr<QObject> drawingAtEachConfigure(QWidget& window) {
    return std::make_unique<ConfigureWatch>(*window.windowHandle(), window);
}

} // namespace lumnara
