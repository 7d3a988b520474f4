#include "app/qt/board/BoardPainter.h"

#include "app/qt/look/Symbols.h"
#include "app/qt/look/TextFit.h"

#include <QFontMetricsF>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace lumnara {
namespace {

constexpr int stripWidth = 64;
constexpr float translucentAlpha = 0.92f;
constexpr double edgeFade = 28;
constexpr double hintSize = 13;
/// The tile that comes from another screen hangs below the pointer, so that its target stays in sight.
constexpr QPointF incomingOffset(-24, 14);

/// Noise in [0, 1) without a pattern that an eye would see.
double noise(std::uint32_t x, std::uint32_t y) {
    std::uint32_t bits = x * 0x9E3779B1u ^ y * 0x85EBCA77u;
    bits = (bits ^ (bits >> 15)) * 0x2C1B3C6Du;
    bits = (bits ^ (bits >> 12)) * 0x297A2D39u;
    return (bits ^ (bits >> 15)) / 4294967296.0;
}

QColor between(const QColor& from, const QColor& to, double part) {
    const auto mix = [part](int a, int b) { return qRound(a + (b - a) * part); };
    return QColor(mix(from.red(), to.red()), mix(from.green(), to.green()), mix(from.blue(), to.blue()));
}

/// A vertical gradient so faint that eight bits would show it in bands; noise below one step hides them.
QImage ditheredStrip(const QColor& top, const QColor& bottom, int height, float alpha) {
    QImage strip(stripWidth, height, alpha < 1 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(strip.scanLine(y));
        const double part = height > 1 ? static_cast<double>(y) / (height - 1) : 0;
        for (int x = 0; x < stripWidth; ++x) {
            const double grain = noise(static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
            const auto channel = [&](int from, int to) {
                return static_cast<int>((from + (to - from) * part) * alpha + grain);
            };
            line[x] = qRgba(channel(top.red(), bottom.red()), channel(top.green(), bottom.green()),
                            channel(top.blue(), bottom.blue()), qRound(255 * alpha));
        }
    }
    return strip;
}

constexpr const char* linkTip =
    "Drag a desktop onto the other screen to link the two, so one name moves both.";

struct Hint {
    std::vector<QString> keys;
    QString label;
};

std::vector<Hint> hintsFor(const BoardContent& content) {
    if (content.renaming) return {{{"Enter"}, "Save"}, {{"Esc"}, "Keep the old name"}};
    if (content.tiles.empty() && !content.query.isEmpty())
        return {{{"Backspace"}, "Erase a letter"}, {{"Esc"}, "Close"}};
    if (content.expanded) return {{{"Enter"}, "Go"}, {{"←", "→"}, "Next"}, {{"Esc"}, "Back"}};
    std::vector<Hint> hints{{{"Enter"}, "Go"}, {{"Esc"}, "Close"}};
    if (content.canCycleScope) hints.push_back({{"Tab"}, "Displays"});
    if (content.hasOtherBoards) hints.push_back({{"Tab"}, "Next screen"});
    hints.push_back({{"Super", "Enter"}, "Rename"});
    hints.push_back({{"Super", "D"}, "Dim"});
    hints.push_back({{"Super", "L"}, "More"});
    if (content.query.isEmpty()) hints.push_back({{"Space"}, "Full size"});
    return hints;
}

} // namespace

void BoardPainter::setLook(const Theme& theme, bool translucent, double devicePixelRatio) {
    if (theme_ == &theme && translucent_ == translucent && devicePixelRatio_ == devicePixelRatio) return;
    theme_ = &theme;
    translucent_ = translucent;
    devicePixelRatio_ = devicePixelRatio;
    backdrop_ = {};
}

void BoardPainter::paint(QPainter& painter, const QRectF& surface, const BoardContent& content,
                         const BoardLayout& layout, const BoardPose& pose) {
    tiles_.setLook(*theme_, content.nameSize, devicePixelRatio_);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBackdrop(painter, surface);
    drawQuery(painter, content, layout);
    drawError(painter, content, layout);
    if (content.tiles.empty()) {
        drawNothing(painter, content, layout);
    } else {
        drawTiles(painter, content, layout, pose);
    }
    if (content.expanded) {
        QColor scrim = backdropAt(0.5);
        scrim.setAlphaF(0.72f);
        painter.fillRect(surface, scrim);
        tiles_.paintExpanded(painter, layout.expanded(), content.tiles[*content.expanded]);
    }
    if (content.incoming || (pose.lifted && content.linksAcross)) {
        drawTip(painter, layout);
    } else if (content.hasKeyboard) {
        drawHints(painter, content, layout);
    }
    if (content.incoming)
        tiles_.paint(painter, {content.incomingAt + incomingOffset, layout.tileSize()}, *content.incoming,
                     TileStance::lifted);
}

QColor BoardPainter::backdropAt(double part) const {
    return between(theme_->backdropTop, theme_->backdropBottom, part);
}

void BoardPainter::drawBackdrop(QPainter& painter, const QRectF& surface) {
    const int height = static_cast<int>(std::ceil(surface.height() * devicePixelRatio_));
    if (backdrop_.height() != height) {
        backdrop_ = QPixmap::fromImage(ditheredStrip(theme_->backdropTop, theme_->backdropBottom, height,
                                                     translucent_ ? translucentAlpha : 1.0f));
        backdrop_.setDevicePixelRatio(devicePixelRatio_);
    }
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawTiledPixmap(surface, backdrop_);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void BoardPainter::drawScope(QPainter& painter, const QRectF& line, const BoardContent& content,
                             double* width) {
    *width = 0;
    if (content.scope.isEmpty()) return;
    const QFont font = interfaceFont(14, QFont::Medium);
    const QFontMetricsF fontMetrics(font);
    const QString label = fontMetrics.elidedText(content.scope, Qt::ElideRight, line.width() - 62);
    double right = line.right();
    if (content.canCycleScope) {
        drawKeycap(painter, *theme_, {right - 34, line.center().y() - 10.5, 34, 21}, QStringLiteral("Tab"));
        right -= 34 + 8;
    }
    const double labelWidth = std::ceil(fontMetrics.horizontalAdvance(label)) + 1;
    painter.setFont(font);
    painter.setPen(theme_->secondaryText);
    painter.drawText(QRectF(right - labelWidth, line.top(), labelWidth, line.height()),
                     Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, label);
    *width = line.right() - (right - labelWidth) + 20;
}

void BoardPainter::drawQuery(QPainter& painter, const BoardContent& content, const BoardLayout& layout) {
    const QRectF& line = layout.query();
    const double size = layout.querySize();
    double scopeWidth = 0;
    drawScope(painter, layout.scope(), content, &scopeWidth);
    const QRectF glass(line.left() + 1, line.center().y() - size * 0.40, size * 0.80, size * 0.80);
    drawSymbol(painter, "magnifyingglass", glass, theme_->faintText);
    const QRectF box = line.adjusted(size * 1.25, 0, -scopeWidth, 0);
    const QFont font = interfaceFont(size, QFont::Medium);
    if (content.query.isEmpty()) {
        painter.setFont(interfaceFont(size));
        painter.setPen(theme_->faintText);
        painter.drawText(box.adjusted(size * 0.22, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         QFontMetricsF(painter.font())
                             .elidedText(QStringLiteral("Type a name"), Qt::ElideRight, box.width()));
    }
    painter.setPen(theme_->text);
    const bool typing = content.hasKeyboard && !content.renaming;
    const TypedText typed(content.query, font, box.width(), 1);
    typed.draw(painter, {box.left(), box.center().y() - typed.height() / 2},
               typing ? theme_->text : QColor(Qt::transparent));
    painter.fillRect(QRectF(line.left(), line.bottom(), line.width(), 1), theme_->hairline);
}

void BoardPainter::drawError(QPainter& painter, const BoardContent& content, const BoardLayout& layout) {
    if (content.error.isEmpty()) return;
    const QRectF& line = layout.error();
    drawSymbol(painter, "exclamationmark.circle", {line.left(), line.top() + 1.5, 17, 17}, theme_->error);
    painter.setPen(theme_->error);
    drawFitted(painter, line.adjusted(26, 0, 0, 0), content.error, interfaceFont(15, QFont::Medium), 1);
}

void BoardPainter::drawTiles(QPainter& painter, const BoardContent& content, const BoardLayout& layout,
                             const BoardPose& pose) {
    painter.save();
    const double bleed = metrics::tileBleed;
    const QRectF clip = layout.viewport().adjusted(-bleed, -bleed, bleed, bleed);
    painter.setClipRect(clip, Qt::IntersectClip);
    const std::size_t none = content.tiles.size();
    const auto place = [&](std::size_t position) {
        const auto offset = pose.offsets.find(content.tiles[position].key);
        return layout.tile(static_cast<int>(position))
            .translated(offset != pose.offsets.end() ? offset->second : QPointF())
            .translated(0, -pose.scroll);
    };
    const std::size_t front = content.renaming.value_or(content.selected.value_or(none));
    const std::size_t target = content.target.value_or(none);
    for (std::size_t position = 0; position < content.tiles.size(); ++position) {
        if (position == front || position == target || content.tiles[position].key == pose.lifted) continue;
        if (clip.intersects(place(position)))
            tiles_.paint(painter, place(position), content.tiles[position], TileStance::resting);
    }
    // The ring of the selected tile lies over its neighbours.
    if (front < none && front != target && content.tiles[front].key != pose.lifted) {
        if (content.renaming) {
            tiles_.paintRenaming(painter, place(front), content.tiles[front], content.renameText);
        } else {
            tiles_.paint(painter, place(front), content.tiles[front],
                         content.hasKeyboard ? TileStance::selected : TileStance::marked);
        }
    }
    if (target < none) tiles_.paint(painter, place(target), content.tiles[target], TileStance::selected);
    drawEdges(painter, layout, pose.scroll);
    painter.restore();
    drawThumb(painter, layout, pose.scroll);
    for (const TileContent& tile : content.tiles) {
        if (tile.key == pose.lifted)
            tiles_.paint(painter, {pose.liftedAt, layout.tileSize()}, tile, TileStance::lifted);
    }
}

void BoardPainter::drawEdges(QPainter& painter, const BoardLayout& layout, double scroll) {
    if (layout.maximumScroll() <= 0) return;
    const double bleed = metrics::tileBleed;
    const QRectF view = layout.viewport().adjusted(-bleed, -bleed, bleed, bleed);
    const auto fade = [&](const QRectF& strip, bool upwards) {
        QColor solid = backdropAt(strip.center().y() / (backdrop_.height() / devicePixelRatio_));
        QColor clear = solid;
        clear.setAlpha(0);
        QLinearGradient gradient(0, strip.top(), 0, strip.bottom());
        gradient.setColorAt(upwards ? 0 : 1, solid);
        gradient.setColorAt(upwards ? 1 : 0, clear);
        painter.fillRect(strip, gradient);
    };
    if (scroll > 1) fade({view.left(), view.top(), view.width(), edgeFade}, true);
    if (scroll < layout.maximumScroll() - 1)
        fade({view.left(), view.bottom() - edgeFade, view.width(), edgeFade}, false);
}

void BoardPainter::drawThumb(QPainter& painter, const BoardLayout& layout, double scroll) {
    if (layout.maximumScroll() <= 0) return;
    const QRectF& view = layout.viewport();
    const double length =
        std::max(36.0, view.height() * view.height() / (view.height() + layout.maximumScroll()));
    const double top = view.top() + (view.height() - length) * scroll / layout.maximumScroll();
    QColor color = theme_->faintText;
    color.setAlphaF(0.55f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(view.right() + metrics::tileBleed + 4, top, 4, length), 2, 2);
}

void BoardPainter::drawNothing(QPainter& painter, const BoardContent& content, const BoardLayout& layout) {
    const QRectF& view = layout.viewport();
    const bool searching = !content.query.isEmpty();
    if (!searching && !content.error.isEmpty()) return;
    painter.setPen(theme_->secondaryText);
    drawFitted(painter, {view.left(), view.top(), view.width(), 26},
               searching ? QStringLiteral("No desktop is called “%1”").arg(content.query)
                         : QStringLiteral("No desktops to show"),
               interfaceFont(18, QFont::Medium), 1);
    if (!searching) return;
    painter.setPen(theme_->faintText);
    drawFitted(painter, {view.left(), view.top() + 30, view.width(), 22},
               QStringLiteral("Names and aliases are searched; a few letters are enough."), interfaceFont(14),
               1);
}

void BoardPainter::drawHints(QPainter& painter, const BoardContent& content, const BoardLayout& layout) {
    const QRectF& line = layout.hints();
    const QFont labelFont = interfaceFont(hintSize);
    const QFontMetricsF labelMetrics(labelFont);
    const QFontMetricsF keyMetrics(interfaceFont(12, QFont::Medium));
    double x = line.left();
    for (const Hint& hint : hintsFor(content)) {
        double width = 0;
        for (const QString& key : hint.keys)
            width += std::max(22.0, std::ceil(keyMetrics.horizontalAdvance(key)) + 14) + 4;
        const double labelWidth = std::ceil(labelMetrics.horizontalAdvance(hint.label));
        if (x + width + 4 + labelWidth > line.right()) break;
        for (const QString& key : hint.keys) {
            const double keyWidth = std::max(22.0, std::ceil(keyMetrics.horizontalAdvance(key)) + 14);
            drawKeycap(painter, *theme_, {x, line.center().y() - 11, keyWidth, 22}, key);
            x += keyWidth + 4;
        }
        painter.setFont(labelFont);
        painter.setPen(theme_->faintText);
        painter.drawText(QRectF(x + 4, line.top(), labelWidth + 2, line.height()),
                         Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, hint.label);
        x += 4 + labelWidth + 24;
    }
}

void BoardPainter::drawTip(QPainter& painter, const BoardLayout& layout) {
    const QRectF& line = layout.hints();
    if (line.isEmpty()) return;
    drawSymbol(painter, "link", {line.left(), line.center().y() - 9, 18, 18}, theme_->secondaryText);
    painter.setFont(interfaceFont(hintSize + 1));
    painter.setPen(theme_->secondaryText);
    const QRectF box = line.adjusted(28, 0, 0, 0);
    painter.drawText(
        box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip,
        QFontMetricsF(painter.font()).elidedText(QString::fromUtf8(linkTip), Qt::ElideRight, box.width()));
}

} // namespace lumnara
