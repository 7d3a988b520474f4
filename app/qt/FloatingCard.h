#pragma once

#include <QWidget>

namespace lumnara {

struct Theme;

/// A small rounded window over everything, out of the window manager's hands. It takes no focus, no key and
/// no click. Whoever derives draws what stands on it.
class FloatingCard : public QWidget {
protected:
    FloatingCard(const QString& title, double cornerRadius);

    /// Shows it there, in the arrangement of screens, above what is there already.
    void putUp(const QRect& place);
    void drawGround(QPainter& painter, const Theme& theme) const;

private:
    void roundCorners(QSize size);

    double cornerRadius_;
};

} // namespace lumnara
