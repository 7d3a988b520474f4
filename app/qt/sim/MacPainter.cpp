#include "app/qt/sim/MacPainter.h"

#include "app/qt/look/TextFit.h"
#include "app/qt/look/Theme.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <cmath>

namespace lumnara {
namespace {

constexpr double screenRadius = 10;
constexpr double menuBarHeight = 22;
constexpr double titleBarHeight = 24;
constexpr double windowRadius = 8;
constexpr double thumbnailRadius = 6;
/// Of a bar that has no pictures yet.
constexpr double labelSize = 12;
/// By how much the windows draw together behind Mission Control.
constexpr double exposedScale = 0.66;

const QColor ink(0x1C, 0x20, 0x28);
const QColor paper(0xFA, 0xFB, 0xFC);
const QColor accent(0x3D, 0x8B, 0xFD);
const QColor veil(0x0E, 0x10, 0x16, 0xA6);

QRectF rectOf(const Rect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

/// A ground that tells the Space from others: their numbers lie close together, their hues don't.
QBrush groundOf(SpaceID space, const QRectF& area) {
    constexpr double goldenRatio = 0.618033988749895;
    const double hue = std::fmod(static_cast<double>(space.raw) * goldenRatio, 1);
    QLinearGradient gradient(area.topLeft(), area.bottomRight());
    gradient.setColorAt(0, QColor::fromHslF(static_cast<float>(hue), 0.42F, 0.32F));
    gradient.setColorAt(1, QColor::fromHslF(static_cast<float>(std::fmod(hue + 0.08, 1)), 0.5F, 0.66F));
    return gradient;
}

/// The same hue for the same application, whatever its windows.
QColor tintOf(const std::string& owner) {
    std::size_t sum = 7;
    for (const char c : owner) sum = sum * 31 + static_cast<unsigned char>(c);
    return QColor::fromHsl(static_cast<int>(sum % 360), 120, 150);
}

void drawLines(QPainter& painter, const QRectF& body, const QColor& tint) {
    painter.setPen(Qt::NoPen);
    QColor line = tint;
    line.setAlphaF(0.35F);
    painter.setBrush(line);
    const double gap = 18;
    int number = 0;
    for (double y = body.top() + 14; y + 8 < body.bottom(); y += gap, ++number) {
        const double part = 0.35 + 0.5 * std::abs(std::sin(number * 1.7 + body.width()));
        painter.drawRoundedRect(QRectF(body.left() + 14, y, (body.width() - 28) * part, 7), 3, 3);
    }
}

void drawWindow(QPainter& painter, const WindowPicture& window, const QRectF& place, bool fillsScreen) {
    const double radius = fillsScreen ? 0 : windowRadius;
    painter.setPen(Qt::NoPen);
    if (!fillsScreen) {
        painter.setBrush(QColor(0, 0, 0, window.isActive ? 70 : 40));
        painter.drawRoundedRect(place.translated(0, 5).adjusted(-3, -1, 3, 3), radius + 3, radius + 3);
    }
    QPainterPath shape;
    shape.addRoundedRect(place, radius, radius);
    painter.fillPath(shape, paper);
    const QColor tint = tintOf(window.owner);
    painter.save();
    painter.setClipPath(shape, Qt::IntersectClip);
    const QRectF bar(place.topLeft(), QSizeF(place.width(), titleBarHeight));
    painter.fillRect(bar, window.isActive ? tint : QColor(0xDF, 0xE2, 0xE8));
    drawLines(painter, place.adjusted(0, titleBarHeight, 0, 0), tint);
    painter.setPen(window.isActive ? QColor(Qt::white) : QColor(0x5B, 0x63, 0x70));
    painter.setFont(interfaceFont(labelSize, QFont::DemiBold));
    painter.drawText(bar, Qt::AlignCenter, QString::fromStdString(window.owner));
    painter.restore();
    painter.setPen(QPen(QColor(0, 0, 0, 50), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(place, radius, radius);
}

/// `gather` draws the windows together towards the middle, from 0 to 1.
void drawSpace(QPainter& painter, const SpacePicture& space, const QRectF& screen, double gather) {
    painter.fillRect(screen, groundOf(space.space, screen));
    painter.save();
    const double scale = 1 - gather * (1 - exposedScale);
    painter.translate(screen.center());
    painter.scale(scale, scale);
    painter.translate(-screen.center() + QPointF(0, gather * screen.height() * 0.1));
    for (const WindowPicture& window : space.windows)
        drawWindow(painter, window, rectOf(window.frame), space.kind == SpaceKind::fullscreen && gather == 0);
    painter.restore();
}

void drawMenuBar(QPainter& painter, const ScreenPicture& screen, const std::string& frontmost) {
    const QRectF bar(rectOf(screen.frame).topLeft(), QSizeF(screen.frame.width, menuBarHeight));
    painter.fillRect(bar, QColor(255, 255, 255, screen.hasMenuBar ? 215 : 120));
    painter.setPen(ink);
    painter.setFont(interfaceFont(labelSize, QFont::DemiBold));
    if (screen.hasMenuBar)
        painter.drawText(bar.adjusted(14, 0, -14, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         QString::fromStdString(frontmost));
    painter.setFont(interfaceFont(labelSize));
    painter.drawText(bar.adjusted(14, 0, -14, 0), Qt::AlignRight | Qt::AlignVCenter,
                     QString::fromStdString(screen.name));
}

void drawShown(QPainter& painter, const ScreenPicture& screen, const QRectF& area, double gather) {
    const SpacePicture* shown = screen.find(screen.shown);
    const SpacePicture* arriving = screen.arriving ? screen.find(*screen.arriving) : nullptr;
    if (!shown) return;
    if (!arriving) return drawSpace(painter, *shown, area, gather);
    const double direction = screen.arrivesFromTheRight ? 1 : -1;
    // Quick first and gently at the end, as the eye expects it of a slide.
    const double eased = 1 - std::pow(1 - screen.arrived, 3);
    painter.save();
    painter.translate(-direction * eased * area.width(), 0);
    drawSpace(painter, *shown, area, gather);
    painter.translate(direction * area.width(), 0);
    drawSpace(painter, *arriving, area, gather);
    painter.restore();
}

void drawScreen(QPainter& painter, const ScreenPicture& screen, const MacPicture& picture) {
    const double gather = picture.missionControl.open;
    drawShown(painter, screen, rectOf(screen.frame), gather);
    const SpacePicture* shown = screen.find(screen.shown);
    const bool isCovered = shown && shown->kind == SpaceKind::fullscreen && !screen.arriving;
    if (isCovered) return;
    painter.setOpacity(1 - gather);
    drawMenuBar(painter, screen, picture.frontmost);
    painter.setOpacity(1);
}

void drawLabel(QPainter& painter, const QRectF& box, const std::string& title, bool isCurrent) {
    painter.setPen(isCurrent ? QColor(Qt::white) : QColor(0xD5, 0xDA, 0xE4));
    const QFont font = interfaceFont(labelSize, isCurrent ? QFont::DemiBold : QFont::Normal);
    painter.setFont(font);
    painter.drawText(box, Qt::AlignCenter,
                     QFontMetrics(font).elidedText(QString::fromStdString(title), Qt::ElideRight,
                                                   static_cast<int>(box.width())));
}

/// The Space as its screen would show it, small.
void drawFace(QPainter& painter, const QRectF& face, const SpacePicture& space, const QRectF& screen) {
    QPainterPath shape;
    shape.addRoundedRect(face, thumbnailRadius, thumbnailRadius);
    painter.save();
    painter.setClipPath(shape, Qt::IntersectClip);
    painter.translate(face.topLeft());
    painter.scale(face.width() / screen.width(), face.height() / screen.height());
    painter.translate(-screen.topLeft());
    drawSpace(painter, space, screen, 0);
    painter.restore();
}

void drawThumbnail(QPainter& painter, const ThumbnailPicture& thumbnail, double expanded,
                   const ScreenPicture& screen) {
    const QRectF place = rectOf(thumbnail.frame);
    if (expanded < 0.5) return drawLabel(painter, place, thumbnail.title, thumbnail.isCurrent);
    const QRectF face = place.adjusted(0, 0, 0, -labelSize - 6);
    if (thumbnail.isDragged) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 90));
        painter.drawRoundedRect(face.translated(0, 8).adjusted(-4, -2, 4, 4), thumbnailRadius,
                                thumbnailRadius);
    }
    if (const SpacePicture* space = screen.find(thumbnail.space))
        drawFace(painter, face, *space, rectOf(screen.frame));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(thumbnail.isCurrent || thumbnail.isDragged ? QPen(Qt::white, 2.5)
                                                              : QPen(QColor(255, 255, 255, 90), 1));
    painter.drawRoundedRect(face, thumbnailRadius, thumbnailRadius);
    drawLabel(painter, QRectF(place.left() - 6, face.bottom() + 3, place.width() + 12, labelSize + 4),
              thumbnail.title, thumbnail.isCurrent);
}

void drawAddButton(QPainter& painter, const Rect& frame) {
    const QRectF place = rectOf(frame);
    painter.setPen(QPen(QColor(255, 255, 255, 190), 1.5));
    painter.setBrush(QColor(255, 255, 255, 30));
    painter.drawRoundedRect(place, thumbnailRadius, thumbnailRadius);
    const QPointF middle = place.center();
    const double arm = std::min(place.width(), place.height()) * 0.2;
    painter.drawLine(middle - QPointF(arm, 0), middle + QPointF(arm, 0));
    painter.drawLine(middle - QPointF(0, arm), middle + QPointF(0, arm));
}

void drawBar(QPainter& painter, const SpacesBarPicture& bar, const ScreenPicture& screen, double open) {
    painter.save();
    painter.setOpacity(open);
    painter.setClipRect(rectOf(bar.screen));
    painter.fillRect(rectOf(bar.bar), veil);
    for (const bool dragged : {false, true})
        for (const ThumbnailPicture& thumbnail : bar.thumbnails)
            if (thumbnail.isDragged == dragged) drawThumbnail(painter, thumbnail, bar.expanded, screen);
    if (bar.addButton) drawAddButton(painter, *bar.addButton);
    painter.restore();
}

/// The tip is the point that counts.
void drawPointer(QPainter& painter, const Point& tip, bool isButtonDown) {
    painter.save();
    painter.translate(tip.x, tip.y);
    if (isButtonDown) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(accent.red(), accent.green(), accent.blue(), 110));
        painter.drawEllipse(QPointF(0, 0), 13, 13);
    }
    painter.setPen(QPen(Qt::white, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(0x10, 0x12, 0x16));
    painter.drawPolygon(
        QPolygonF({{0, 0}, {0, 17}, {4.2, 13.2}, {7.2, 19.6}, {10, 18.4}, {7, 12}, {12.2, 12}}));
    painter.restore();
}

} // namespace

void paintMac(QPainter& painter, const MacPicture& picture) {
    painter.setRenderHint(QPainter::Antialiasing);
    for (const ScreenPicture& screen : picture.screens) {
        QPainterPath glass;
        glass.addRoundedRect(rectOf(screen.frame), screenRadius, screenRadius);
        painter.save();
        painter.setClipPath(glass);
        drawScreen(painter, screen, picture);
        painter.restore();
        painter.setPen(QPen(QColor(0, 0, 0, 160), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(glass);
    }
    for (const SpacesBarPicture& bar : picture.missionControl.bars)
        for (const ScreenPicture& screen : picture.screens)
            if (screen.uuid == bar.display) drawBar(painter, bar, screen, picture.missionControl.open);
    drawPointer(painter, picture.missionControl.pointer, picture.missionControl.isButtonDown);
}

} // namespace lumnara
