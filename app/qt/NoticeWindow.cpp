#include "app/qt/NoticeWindow.h"

#include "app/qt/TextFit.h"
#include "app/qt/Theme.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace lumnara {
namespace {

constexpr int mostTextWidth = 520;
constexpr int sidePadding = 22;
constexpr int heightPadding = 14;
constexpr double cornerRadius = 14;
constexpr double textSize = 15;
/// How far the notice stands from the bottom, as a part of the screen's height.
constexpr double bottomPart = 0.09;
constexpr int mostLines = 5;

QFont noticeFont() { return interfaceFont(textSize, QFont::Medium); }

} // namespace

NoticeWindow::NoticeWindow(async::Loop& loop)
    : FloatingCard(QStringLiteral("Lumnara notice"), cornerRadius),
      loop_(loop) {}

void NoticeWindow::showNotice(const Notice& notice) {
    text_ = QString::fromStdString(notice.text);
    putUp(place());
    end_ = std::make_unique<async::Delayed>(loop_, notice.seconds, [this] { hide(); });
}

QRect NoticeWindow::place() const {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect area = screen->geometry();
    const double room = std::min(mostTextWidth, area.width() - 2 * sidePadding - 32);
    const QSize size =
        fittedSize(text_, noticeFont(), room, mostLines).toSize() + QSize(2 * sidePadding, 2 * heightPadding);
    return QRect({area.center().x() - size.width() / 2,
                  area.bottom() - static_cast<int>(area.height() * bottomPart) - size.height()},
                 size);
}

void NoticeWindow::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::of(sessionAppearance());
    QPainter painter(this);
    drawGround(painter, theme);
    painter.setPen(theme.text);
    drawFitted(painter, rect().adjusted(sidePadding, heightPadding, -sidePadding, -heightPadding), text_,
               noticeFont(), mostLines);
}

} // namespace lumnara
