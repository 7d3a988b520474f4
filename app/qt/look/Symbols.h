#pragma once

#include <QRectF>
#include <QString>

class QColor;
class QPainter;

namespace lumnara {

/// Whether `name` has a drawing of its own, not only the fallback.
bool hasSymbol(const QString& name);

/// Draws the symbol of that name ("square.grid.2x2", "envelope") as line art that fills the square `box`.
/// An unknown variant falls back to its base ("envelope.fill" to "envelope"), a text that isn't a name, such
/// as an emoji, is drawn as it stands, and any other unknown name becomes "square.grid.2x2".
void drawSymbol(QPainter& painter, const QString& name, const QRectF& box, const QColor& color);

} // namespace lumnara
