#include "app/qt/overlay/FloatingCard.h"

#include "app/qt/look/Theme.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QScreen>

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

void FloatingCard::standOn(LayerShell& shell) {
    layer_ = std::make_unique<LayerPicture>(shell);
    setAttribute(Qt::WA_DontShowOnScreen);
}

void FloatingCard::putUp(const QRect& place) {
    setGeometry(place);
    if (layer_) return putUpAsPicture(place);
    roundCorners(place.size());
    show();
    raise();
    update();
}

void FloatingCard::putUpAsPicture(const QRect& place) {
    const QScreen* screen = QGuiApplication::screenAt(place.center());
    if (!screen) screen = QGuiApplication::primaryScreen();
    QImage picture(place.size() * screen->devicePixelRatio(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(screen->devicePixelRatio());
    picture.fill(Qt::transparent);
    render(&picture, {}, {}, RenderFlags());
    show();
    layer_->show(picture, screen->name().toStdString(), place.topLeft() - screen->geometry().topLeft());
}

void FloatingCard::hideEvent(QHideEvent*) {
    if (layer_) layer_->hide();
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
    if (!layer_) painter.fillRect(rect(), theme.notice);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(theme.noticeBorder, 1));
    painter.setBrush(layer_ ? QBrush(theme.notice) : QBrush(Qt::NoBrush));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius_, cornerRadius_);
}

} // namespace lumnara
