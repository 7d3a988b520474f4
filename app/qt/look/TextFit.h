#pragma once

#include <QFont>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTextLayout>

class QColor;
class QPainter;

namespace lumnara {

/// Draws text from the left edge on at most `mostLines` lines that end at the bottom of `box`; what doesn't
/// fit is cut with an ellipsis. Breaks between words where it can. The painter's pen gives the colour.
void drawFitted(QPainter& painter, const QRectF& box, const QString& text, const QFont& font, int mostLines);

/// The least box that drawFitted fills with this text without cutting more of it than a box `width` wide.
QSizeF fittedSize(const QString& text, const QFont& font, double width, int mostLines);

/// Text that is being typed, its caret behind the last character. On one line a text that is too long shows
/// its end; on several it wraps and shows its last lines.
class TypedText {
public:
    TypedText(const QString& text, const QFont& font, double width, int mostLines);

    double height() const;
    /// The painter's pen gives the text's colour.
    void draw(QPainter& painter, QPointF topLeft, const QColor& caret) const;

private:
    QTextLayout layout_;
    double width_;
    int firstLine_ = 0;
};

} // namespace lumnara
