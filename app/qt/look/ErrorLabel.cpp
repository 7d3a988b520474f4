#include "app/qt/look/ErrorLabel.h"

#include "app/qt/look/Theme.h"

#include <QEvent>

namespace lumnara {

ErrorLabel::ErrorLabel() {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    hide();
}

void ErrorLabel::tell(const QString& sentence) {
    setText(sentence);
    setVisible(!sentence.isEmpty());
}

bool ErrorLabel::event(QEvent* event) {
    const bool done = QLabel::event(event);
    if (event->type() == QEvent::ParentChange || event->type() == QEvent::PaletteChange) tone();
    return done;
}

void ErrorLabel::tone() {
    QPalette toned = palette();
    toned.setColor(QPalette::WindowText, Theme::of(appearanceOf(toned)).error);
    if (toned != palette()) setPalette(toned);
}

} // namespace lumnara
