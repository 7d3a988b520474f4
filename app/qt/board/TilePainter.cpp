#include "app/qt/board/TilePainter.h"

#include "app/qt/look/Symbols.h"
#include "app/qt/look/TextFit.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace lumnara {
namespace {

constexpr int mostPictureKilobytes = 48 * 1024;
constexpr std::size_t mostGrounds = 8;
constexpr double detailSize = 13;
constexpr double detailHeight = 18;
constexpr double dimmedOpacity = 0.5;
constexpr double ringWidth = 2.5;
constexpr double ringDistance = 3.5;
constexpr double keycapSide = 21;
constexpr double expandedRadius = 24;

QRectF textBox(const QRectF& place) {
    return place.adjusted(metrics::tilePadding, metrics::tilePadding, -metrics::tilePadding,
                          -metrics::tilePadding + 1);
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

/// `strength` is the shadow's share of the theme's at the edge of `place`.
void drawShadow(QPainter& painter, const Theme& theme, const QRectF& place, double radius, int reach,
                double drop, double strength) {
    painter.setPen(Qt::NoPen);
    QColor layer = theme.shadow;
    layer.setAlphaF(layer.alphaF() * static_cast<float>(strength) / static_cast<float>(reach));
    painter.setBrush(layer);
    for (int spread = reach; spread > 0; --spread) {
        painter.drawRoundedRect(place.adjusted(-spread, -spread, spread, spread).translated(0, drop),
                                radius + spread, radius + spread);
    }
}

} // namespace

void drawChip(QPainter& painter, const Theme& theme, const QRectF& place, const QString& symbol,
              const QColor& color, bool isCurrent) {
    const QColor shown = color.isValid() ? color : theme.neutral;
    painter.setPen(Qt::NoPen);
    painter.setBrush(isCurrent ? shown
                               : withAlpha(shown, theme.appearance == Appearance::dark ? 0.25 : 0.15));
    const double radius = place.width() * 0.28;
    painter.drawRoundedRect(place, radius, radius);
    const double inset = place.width() * 0.225;
    drawSymbol(painter, symbol, place.adjusted(inset, inset, -inset, -inset),
               isCurrent ? QColor(Qt::white) : theme.legible(shown));
}

void drawKeycap(QPainter& painter, const Theme& theme, const QRectF& place, const QString& label) {
    painter.setPen(QPen(theme.hairline, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), 5.5, 5.5);
    painter.setFont(interfaceFont(12, QFont::Medium));
    painter.setPen(theme.secondaryText);
    painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, label);
}

TilePictures::TilePictures() : tiles_(mostPictureKilobytes) {}

void TilePictures::clear() {
    tiles_.clear();
    grounds_.clear();
}

void TilePainter::setLook(const Theme& theme, double nameSize, double devicePixelRatio) {
    look_ = {&theme, nameSize, devicePixelRatio};
}

void TilePainter::paint(QPainter& painter, const QRectF& place, const TileContent& tile, TileStance stance) {
    const QPointF topLeft = place.topLeft() - QPointF(metrics::tileBleed, metrics::tileBleed);
    const TilePictures::Key key{look_, tile, stance, place.size()};
    if (const QPixmap* known = pictures_.tiles_.object(key)) {
        painter.drawPixmap(topLeft, *known);
        return;
    }
    QPixmap picture = ground(stance, place.size());
    QPainter onto(&picture);
    onto.setRenderHint(QPainter::Antialiasing);
    drawFace(onto, place.translated(-topLeft), tile);
    onto.end();
    painter.drawPixmap(topLeft, picture);
    const int kilobytes = 1 + picture.width() * picture.height() * 4 / 1024;
    pictures_.tiles_.insert(key, new QPixmap(std::move(picture)), kilobytes);
}

const QPixmap& TilePainter::ground(TileStance stance, QSizeF size) {
    auto& grounds = pictures_.grounds_;
    for (const TilePictures::Ground& known : grounds)
        if (known.look == look_ && known.stance == stance && known.size == size) return known.picture;
    QPixmap picture = blank(size);
    QPainter onto(&picture);
    onto.setRenderHint(QPainter::Antialiasing);
    drawGround(onto, {QPointF(metrics::tileBleed, metrics::tileBleed), size}, stance);
    onto.end();
    // Few sizes are in use at a time; with more, the oldest goes.
    if (grounds.size() == mostGrounds) grounds.erase(grounds.begin());
    return grounds.emplace_back(TilePictures::Ground{look_, stance, size, std::move(picture)}).picture;
}

QPixmap TilePainter::blank(QSizeF tileSize) const {
    const QSizeF size = tileSize + 2 * QSizeF(metrics::tileBleed, metrics::tileBleed);
    QPixmap picture((size * look_.devicePixelRatio).toSize());
    picture.setDevicePixelRatio(look_.devicePixelRatio);
    picture.fill(Qt::transparent);
    return picture;
}

QColor TilePainter::colorOf(const TileContent& tile) const {
    return tile.color.isValid() ? tile.color : look_.theme->neutral;
}

void TilePainter::drawGround(QPainter& painter, const QRectF& place, TileStance stance) const {
    const bool dark = look_.theme->appearance == Appearance::dark;
    if (stance == TileStance::selected || stance == TileStance::lifted) {
        drawShadow(painter, *look_.theme, place, metrics::tileRadius, 8, stance == TileStance::lifted ? 2 : 0,
                   1);
    } else if (!dark) {
        drawShadow(painter, *look_.theme, place, metrics::tileRadius, 6, 2, 0.3);
    }
    painter.setPen(QPen(look_.theme->tileBorder, 1));
    painter.setBrush(stance == TileStance::resting ? look_.theme->tile : look_.theme->selectedTile);
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), metrics::tileRadius, metrics::tileRadius);
    if (stance == TileStance::resting) return;
    QColor ringColor = look_.theme->selectionRing;
    if (stance == TileStance::marked) ringColor.setAlphaF(0.3f);
    painter.setPen(QPen(ringColor, ringWidth));
    painter.setBrush(Qt::NoBrush);
    const QRectF ring = place.adjusted(-ringDistance, -ringDistance, ringDistance, ringDistance);
    painter.drawRoundedRect(ring, metrics::tileRadius + ringDistance, metrics::tileRadius + ringDistance);
}

void TilePainter::drawCorner(QPainter& painter, const QRectF& place, const TileContent& tile) const {
    QRectF corner(place.right() - metrics::tilePadding - keycapSide + 2, place.top() + metrics::tilePadding,
                  keycapSide, keycapSide);
    if (tile.digit > 0) {
        drawKeycap(painter, *look_.theme, corner, QString::number(tile.digit));
        corner.translate(-keycapSide - 6, 0);
    }
    if (tile.isLinked) drawSymbol(painter, "link", corner.adjusted(2, 2, -2, -2), look_.theme->faintText);
}

void TilePainter::drawFace(QPainter& painter, const QRectF& place, const TileContent& tile) const {
    if (tile.isDimmed) painter.setOpacity(dimmedOpacity);
    const QRectF box = textBox(place);
    drawChip(painter, *look_.theme, {box.topLeft(), QSizeF(metrics::chip, metrics::chip)}, tile.symbol,
             tile.color, tile.isCurrent);
    drawCorner(painter, place, tile);
    painter.setPen(tile.isNamed ? look_.theme->text : look_.theme->secondaryText);
    drawFitted(painter, box.adjusted(0, 0, 0, -detailHeight - 2), tile.name,
               interfaceFont(look_.nameSize, tile.isNamed ? QFont::DemiBold : QFont::Medium), 2);
    painter.setPen(tile.isCurrent ? look_.theme->legible(colorOf(tile)) : look_.theme->faintText);
    drawFitted(painter, box, tile.detail,
               interfaceFont(detailSize, tile.isCurrent ? QFont::DemiBold : QFont::Normal), 1);
}

void TilePainter::paintRenaming(QPainter& painter, const QRectF& place, const TileContent& tile,
                                const QString& text) {
    painter.drawPixmap(place.topLeft() - QPointF(metrics::tileBleed, metrics::tileBleed),
                       ground(TileStance::selected, place.size()));
    const QRectF box = textBox(place);
    drawChip(painter, *look_.theme, {box.topLeft(), QSizeF(metrics::chip, metrics::chip)}, tile.symbol,
             tile.color, tile.isCurrent);
    const QFont font = interfaceFont(look_.nameSize, QFont::DemiBold);
    const TypedText typed(text, font, box.width() - 6, 2);
    const QRectF field(box.left() - 6, box.bottom() - typed.height() - 12, box.width() + 12,
                       typed.height() + 14);
    const QColor accent = look_.theme->legible(colorOf(tile));
    painter.setPen(QPen(accent, 1.5));
    painter.setBrush(look_.theme->field);
    painter.drawRoundedRect(field.adjusted(0.75, 0.75, -0.75, -0.75), 9, 9);
    const QPointF inside = field.topLeft() + QPointF(9, 7);
    if (text.isEmpty()) {
        painter.setPen(look_.theme->faintText);
        painter.setFont(interfaceFont(look_.nameSize));
        painter.drawText(field.adjusted(13, 0, -9, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         QStringLiteral("Name"));
    }
    painter.setPen(look_.theme->text);
    typed.draw(painter, inside, accent);
}

void TilePainter::paintExpanded(QPainter& painter, const QRectF& place, const TileContent& tile) {
    drawShadow(painter, *look_.theme, place, expandedRadius, 16, 6, 0.6);
    painter.setPen(QPen(look_.theme->tileBorder, 1));
    painter.setBrush(look_.theme->selectedTile);
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), expandedRadius, expandedRadius);
    const QRectF box = place.adjusted(36, 36, -36, -32);
    const double chip = std::min(104.0, box.height() * 0.36);
    drawChip(painter, *look_.theme, {box.topLeft(), QSizeF(chip, chip)}, tile.symbol, tile.color,
             tile.isCurrent);
    double bottom = box.bottom();
    const auto line = [&](const QString& text, const QFont& font, const QColor& color, int lines) {
        if (text.isEmpty()) return;
        painter.setPen(color);
        drawFitted(painter, QRectF(box.left(), box.top(), box.width(), bottom - box.top()), text, font,
                   lines);
        bottom -= std::ceil(QFontMetricsF(font).height()) + 4;
    };
    line(tile.aliases, interfaceFont(16), look_.theme->faintText, 1);
    line(tile.detail, interfaceFont(18, tile.isCurrent ? QFont::DemiBold : QFont::Normal),
         tile.isCurrent ? look_.theme->legible(colorOf(tile)) : look_.theme->secondaryText, 1);
    line(tile.name, interfaceFont(40, tile.isNamed ? QFont::DemiBold : QFont::Medium),
         tile.isNamed ? look_.theme->text : look_.theme->secondaryText, 2);
}

} // namespace lumnara
