#include "app/qt/overlay/OverlayWindow.h"

#include "app/qt/board/BoardContent.h"
#include "app/qt/board/TilePainter.h"
#include "app/qt/look/Symbols.h"
#include "app/qt/look/TextFit.h"
#include "app/qt/look/Theme.h"
#include "app/qt/windows/WindowSystem.h"
#include "core/catalog/DesktopAppearance.h"

#include <QPainter>
#include <QScreen>
#include <QStringList>

#include <algorithm>

namespace lumnara {
namespace {

constexpr double cardRadius = 20;
constexpr double cardPadding = 22;
/// Beside the text, which looks closer to the edge than the chip does.
constexpr double textPadding = 28;
constexpr double chipSide = 68;
constexpr double chipGap = 20;
constexpr double mostTextWidth = 460;
constexpr double nameSize = 30;
constexpr double detailSize = 16;
constexpr double detailGap = 4;
constexpr double linkSide = 18;
constexpr double linkGap = 6;
/// The height of the screen for which these lengths are made.
constexpr double usualHeight = 900;
constexpr int mostNameLines = 2;
constexpr int edgeDistance = 8;
/// Where the middle of the card stands, as a part of the screen's height.
constexpr double middlePart = 0.2;

QString detailOf(const OverlayCard& card) {
    QStringList parts;
    if (card.desktop.isLinked()) parts << QStringLiteral("Linked");
    parts << QString::fromStdString(card.displayName);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(" · "));
}

QRect placeOn(const QRect& screen, QSize card) {
    const int top = screen.top() + qRound(screen.height() * middlePart) - card.height() / 2;
    return QRect({screen.center().x() - card.width() / 2, std::max(top, screen.top() + edgeDistance)}, card);
}

} // namespace

OverlayWindow::OverlayWindow() : FloatingCard(QStringLiteral("Lumnara desktop name"), cardRadius) {}

void OverlayWindow::show(const OverlayCard& card, const ScreenInfo& info) {
    name_ = QString::fromStdString(card.desktop.displayName());
    detail_ = detailOf(card);
    symbol_ = QString::fromStdString(DesktopAppearance::symbol(card.desktop));
    color_ = colorOf(card.desktop);
    isNamed_ = card.desktop.isNamed();
    isLinked_ = card.desktop.isLinked();
    const QRect area = areaOf(info);
    scale_ = std::clamp(area.height() / usualHeight, 0.8, 1.7);
    arrangement_ = arrange(area.size());
    setScreen(screenFor(info));
    putUp(placeOn(area, arrangement_.card.toSize()));
}

OverlayWindow::Arrangement OverlayWindow::arrange(QSize screen) const {
    const double padding = cardPadding * scale_;
    const double chip = chipSide * scale_;
    const double left = padding + chip + chipGap * scale_;
    const double right = textPadding * scale_;
    const double room = std::min(mostTextWidth * scale_, screen.width() - left - right - 2 * edgeDistance);
    const QSizeF name = fittedSize(name_, nameFont(), room, mostNameLines);
    const double side = isLinked_ ? linkSide * scale_ : 0;
    const double indent = isLinked_ ? side + linkGap * scale_ : 0;
    const QSizeF detail = fittedSize(detail_, detailFont(), room - indent, 1);
    const double gap = detail_.isEmpty() ? 0 : detailGap * scale_;
    const double textWidth = std::max(name.width(), indent + detail.width());
    const double textHeight = name.height() + (detail_.isEmpty() ? 0 : gap + detail.height());
    const double height = std::max(chip, textHeight);

    Arrangement places;
    places.card = QSizeF(left + textWidth + right, height + 2 * padding);
    const double top = padding + (height - textHeight) / 2;
    places.chip = QRectF(padding, padding + (height - chip) / 2, chip, chip);
    places.name = QRectF(QPointF(left, top), name);
    places.detail = QRectF(QPointF(left + indent, places.name.bottom() + gap), detail);
    places.link = QRectF(left, places.detail.center().y() - side / 2, side, side);
    return places;
}

void OverlayWindow::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::of(sessionAppearance());
    QPainter painter(this);
    drawGround(painter, theme);
    drawChip(painter, theme, arrangement_.chip, symbol_, color_, true);
    painter.setPen(theme.text);
    drawFitted(painter, arrangement_.name, name_, nameFont(), mostNameLines);
    painter.setPen(theme.secondaryText);
    drawFitted(painter, arrangement_.detail, detail_, detailFont(), 1);
    if (isLinked_) drawSymbol(painter, "link", arrangement_.link, theme.secondaryText);
}

QFont OverlayWindow::nameFont() const {
    return interfaceFont(nameSize * scale_, isNamed_ ? QFont::DemiBold : QFont::Medium);
}

QFont OverlayWindow::detailFont() const { return interfaceFont(detailSize * scale_); }

} // namespace lumnara
