#include "app/qt/look/TextFit.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumnara {
namespace {

/// The texts of the lines; the last holds whatever is left.
std::vector<QString> brokenLines(const QString& text, const QFont& font, double width, int mostLines) {
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    std::vector<QString> lines;
    layout.beginLayout();
    while (static_cast<int>(lines.size()) < mostLines) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width);
        const bool last = static_cast<int>(lines.size()) + 1 == mostLines;
        const QString rest = text.mid(line.textStart());
        lines.push_back((last ? rest : rest.left(line.textLength())).trimmed());
    }
    layout.endLayout();
    return lines;
}

} // namespace

void drawFitted(QPainter& painter, const QRectF& box, const QString& text, const QFont& font, int mostLines) {
    const QFontMetricsF fontMetrics(font);
    const double lineHeight = std::ceil(fontMetrics.height());
    const std::vector<QString> lines = brokenLines(text.simplified(), font, box.width(), mostLines);
    painter.setFont(font);
    double top = box.bottom() - lineHeight * static_cast<double>(lines.size());
    for (const QString& line : lines) {
        painter.drawText(QRectF(box.left(), top, box.width(), lineHeight),
                         Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter | Qt::TextSingleLine |
                             Qt::TextDontClip,
                         fontMetrics.elidedText(line, Qt::ElideRight, box.width()));
        top += lineHeight;
    }
}

QSizeF fittedSize(const QString& text, const QFont& font, double width, int mostLines) {
    const QFontMetricsF fontMetrics(font);
    const std::vector<QString> lines = brokenLines(text.simplified(), font, width, mostLines);
    double widest = 0;
    for (const QString& line : lines) widest = std::max(widest, fontMetrics.horizontalAdvance(line));
    return {std::min(width, std::ceil(widest) + 1),
            std::ceil(fontMetrics.height()) * static_cast<double>(lines.size())};
}

TypedText::TypedText(const QString& text, const QFont& font, double width, int mostLines)
    : layout_(text, font),
      width_(width) {
    QTextOption option;
    option.setWrapMode(mostLines > 1 ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::NoWrap);
    option.setFlags(QTextOption::IncludeTrailingSpaces);
    layout_.setTextOption(option);
    double bottom = 0;
    layout_.beginLayout();
    for (QTextLine line = layout_.createLine(); line.isValid(); line = layout_.createLine()) {
        line.setLineWidth(width);
        line.setPosition(QPointF(0, bottom));
        bottom += std::ceil(line.height());
    }
    layout_.endLayout();
    firstLine_ = std::max(0, layout_.lineCount() - mostLines);
}

double TypedText::height() const {
    const QTextLine last = layout_.lineAt(layout_.lineCount() - 1);
    return last.y() + std::ceil(last.height()) - layout_.lineAt(firstLine_).y();
}

void TypedText::draw(QPainter& painter, QPointF topLeft, const QColor& caret) const {
    const QTextLine last = layout_.lineAt(layout_.lineCount() - 1);
    const double size = layout_.font().pixelSize();
    const double caretWidth = std::max(1.5, size / 14.0);
    const double caretX = last.cursorToX(static_cast<int>(layout_.text().size()));
    // In a text that runs to the left the end is on the left and stays in view by itself.
    const double shift = std::max(0.0, caretX + caretWidth - width_);
    const QPointF origin = topLeft - QPointF(shift, layout_.lineAt(firstLine_).y());
    painter.save();
    painter.setClipRect(QRectF(topLeft.x() - 2, topLeft.y(), width_ + 4, height()), Qt::IntersectClip);
    for (int number = firstLine_; number < layout_.lineCount(); ++number)
        layout_.lineAt(number).draw(&painter, origin);
    const double middle = origin.y() + last.y() + last.height() / 2;
    painter.fillRect(QRectF(origin.x() + caretX, middle - size * 0.6, caretWidth, size * 1.2), caret);
    painter.restore();
}

} // namespace lumnara
