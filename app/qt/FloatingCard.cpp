#include "app/qt/FloatingCard.h"

#include "app/qt/Theme.h"

#include <QBitmap>
#include <QPainter>

namespace lumnara {

FloatingCard::FloatingCard(const QString& title, double cornerRadius)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::BypassWindowManagerHint | Qt::WindowTransparentForInput |
                           Qt::WindowDoesNotAcceptFocus),
      cornerRadius_(cornerRadius) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(title);
}

void FloatingCard::putUp(const QRect& place) {
    setGeometry(place);
    roundCorners(place.size());
    show();
    raise();
    update();
}

/// Without a compositor the corners would be black.
void FloatingCard::roundCorners(QSize size) {
    QBitmap shape(size);
    shape.clear();
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRect({}, size), cornerRadius_, cornerRadius_);
    painter.end();
    setMask(shape);
}

void FloatingCard::drawGround(QPainter& painter, const Theme& theme) const {
    // Up to the shape's edge: half of a pixel of ours would let black through where nothing is blended.
    painter.fillRect(rect(), theme.notice);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.noticeBorder, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_, cornerRadius_);
}

} // namespace lumnara
