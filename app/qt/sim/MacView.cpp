#include "app/qt/sim/MacView.h"

#include "app/qt/look/Theme.h"
#include "app/qt/sim/MacPainter.h"
#include "app/qt/windows/WindowSystem.h"
#include "core/platform/mac/engines/GestureFields.h"

#include <QCursor>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include <algorithm>
#include <ranges>

namespace lumnara {
namespace {

constexpr double framesPerSecond = 60;
constexpr int margin = 20;
/// The proportions of a screen.
constexpr double heightToWidth = 0.625;
/// Slow enough for an animation.
constexpr double userSwipeSpeed = 300;

} // namespace

MacView::MacView(async::Loop& loop, SimulatedMac& mac)
    : loop_(loop),
      mac_(mac),
      frame_(loop, 1 / framesPerSecond, [this] { look(); }) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setCursor(Qt::BlankCursor); // the Mac's own pointer is drawn
    setMinimumSize(800, 320);
}

std::vector<QRect> MacView::areas(QSize view, int count) {
    const int width = (view.width() - (count + 1) * margin) / std::max(count, 1);
    const int height = std::min(view.height() - 2 * margin, static_cast<int>(width * heightToWidth));
    std::vector<QRect> areas;
    for (int index = 0; index < count; ++index)
        areas.emplace_back(margin + index * (width + margin), (view.height() - height) / 2, width, height);
    return areas;
}

std::vector<Rect> MacView::frames(int count) const {
    std::vector<Rect> frames;
    const double units = unitsPerPoint(*screen());
    for (const QRect& area : areas(size(), count)) {
        const Point origin = arrangementPoint(mapToGlobal(area.topLeft()));
        frames.push_back({origin.x, origin.y, area.width() * units, area.height() * units});
    }
    return frames;
}

std::string MacView::chosenScreen() const {
    for (const ScreenPicture& screen : picture_.screens)
        if (screen.uuid == chosen_) return chosen_;
    return picture_.screens.empty() ? std::string() : picture_.screens.front().uuid;
}

void MacView::look() {
    if (!isVisible()) return;
    followPointer();
    MacPicture now = pictureOf(mac_, loop_.now());
    if (now == picture_) return;
    picture_ = std::move(now);
    update();
}

/// Also where another of our windows stands before the view: the Mac has one pointer everywhere.
void MacView::followPointer() {
    const QPoint pointer = QCursor::pos();
    if (pointer == lastPointer_) return;
    lastPointer_ = pointer;
    if (!underMouse()) post(MouseEventType::moved, arrangementPoint(pointer));
}

bool MacView::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::Resize || event->type() == QEvent::Show) moveScreens();
    return handled;
}

void MacView::moveScreens() {
    const int count = static_cast<int>(mac_.layout().screens().size());
    if (count > 0) mac_.moveScreens(frames(count));
}

void MacView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::of(Appearance::dark).backdropBottom);
    const Point origin = arrangementPoint(mapToGlobal(QPoint(0, 0)));
    const double units = unitsPerPoint(*screen());
    painter.scale(1 / units, 1 / units);
    painter.translate(-origin.x, -origin.y);
    const std::string chosen = chosenScreen();
    for (const ScreenPicture& screen : picture_.screens) {
        if (screen.uuid != chosen) continue;
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Theme::of(Appearance::dark).secondaryText, 2));
        painter.drawRoundedRect(
            QRectF(screen.frame.x, screen.frame.y, screen.frame.width, screen.frame.height)
                .adjusted(-5, -5, 5, 5),
            14, 14);
    }
    paintMac(painter, picture_);
}

void MacView::post(MouseEventType type, Point at) {
    SyntheticEvent event;
    event.origin = MouseEvent{type, at, MouseButton::left};
    mac_.input(event);
}

void MacView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const Point at = arrangementPoint(event->globalPosition());
    for (const ScreenPicture& screen : picture_.screens)
        if (screen.frame.contains(at)) chosen_ = screen.uuid;
    if (!mac_.missionControl().isUp()) raiseWindowAt(at);
    post(MouseEventType::leftDown, at);
    update();
}

void MacView::raiseWindowAt(Point at) {
    for (const ScreenPicture& screen : picture_.screens) {
        const SpacePicture* shown = screen.find(screen.shown);
        if (!shown || !screen.frame.contains(at)) continue;
        for (const WindowPicture& window : shown->windows | std::views::reverse) {
            if (!window.frame.contains(at)) continue;
            const SimulatedWindow* found = mac_.windows().find(window.number);
            if (!found) return;
            mac_.apps().activateSelf(found->ownerPid);
            mac_.apps().makeKey(window.number);
            return;
        }
    }
}

void MacView::mouseMoveEvent(QMouseEvent* event) {
    lastPointer_ = event->globalPosition().toPoint();
    post(event->buttons() & Qt::LeftButton ? MouseEventType::leftDragged : MouseEventType::moved,
         arrangementPoint(event->globalPosition()));
}

void MacView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        post(MouseEventType::leftUp, arrangementPoint(event->globalPosition()));
}

void MacView::keyPressEvent(QKeyEvent* event) {
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (control && (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
        swipe(event->key() == Qt::Key_Right);
    } else if (event->key() == Qt::Key_F3 || (control && event->key() == Qt::Key_Up)) {
        openMissionControl();
    } else if (event->key() == Qt::Key_Escape) {
        for (const bool down : {true, false}) {
            SyntheticEvent key;
            key.origin = KeyEvent{KeyCode::escape, down};
            mac_.input(key);
        }
    } else {
        QWidget::keyPressEvent(event);
    }
}

void MacView::openMissionControl() { mac_.openFile(SimulatedMac::missionControlApplication); }

void MacView::swipe(bool toTheRight) {
    for (const ScreenPicture& screen : picture_.screens)
        if (screen.uuid == chosenScreen() && !screen.frame.contains(mac_.pointer().position()))
            post(MouseEventType::moved, screen.frame.middle());
    for (const auto phase : {GesturePhase::began, GesturePhase::changed, GesturePhase::ended})
        mac_.input(GestureFields::dockSwipe(phase, toTheRight ? 1 : -1, userSwipeSpeed));
}

} // namespace lumnara
