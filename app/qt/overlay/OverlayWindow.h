#pragma once

#include "app/overlay/OverlaySurface.h"
#include "app/qt/overlay/FloatingCard.h"

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

namespace lumnara {

/// The card that names the desktop a screen has changed to: in the upper part of the screen, where it meets
/// no notice, with the desktop's symbol in its colour. It grows with the screen.
class OverlayWindow final : public FloatingCard, public OverlaySurface {
public:
    OverlayWindow();

    void show(const OverlayCard& card, const ScreenInfo& screen) override;
    void hide() override { QWidget::hide(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// Where things stand on the card.
    struct Arrangement {
        QSizeF card;
        QRectF chip;
        QRectF name;
        QRectF link; ///< the sign of a linked desktop; empty without one
        QRectF detail;
    };

    Arrangement arrange(QSize screen) const;
    QFont nameFont() const;
    QFont detailFont() const;

    QString name_;
    QString detail_;
    QString symbol_;
    QColor color_;
    bool isNamed_ = false;
    bool isLinked_ = false;
    /// The size of everything, as the screen is large.
    double scale_ = 1;
    Arrangement arrangement_;
};

} // namespace lumnara
