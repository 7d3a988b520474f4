#include "app/qt/look/SecondaryLabel.h"

#include <QEvent>

namespace lumnara {

SecondaryLabel::SecondaryLabel(const QString& text) : QLabel(text) {}

bool SecondaryLabel::event(QEvent* event) {
    const bool done = QLabel::event(event);
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::PaletteChange) tone();
    return done;
}

void SecondaryLabel::tone() {
    if (!parentWidget()) return;
    QPalette toned = palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        QColor color = parentWidget()->palette().color(group, QPalette::WindowText);
        color.setAlphaF(color.alphaF() * softness);
        toned.setColor(group, QPalette::WindowText, color);
    }
    if (toned != palette()) setPalette(toned);
}

} // namespace lumnara
