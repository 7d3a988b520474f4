#pragma once

#include "app/qt/windows/LayerPicture.h"

#include <QWidget>

#include <memory>

namespace lumnara {

class LayerShell;
struct Theme;

/// A small rounded window over everything, out of the window manager's hands. It takes no focus, no key and
/// no click. Whoever derives draws what stands on it.
class FloatingCard : public QWidget {
public:
    /// Where the compositor places windows, the card is a picture on its layer shell, which outlives it.
    /// Called before the card is first put up.
    void standOn(LayerShell& shell);

protected:
    FloatingCard(const QString& title, double cornerRadius);

    /// Shows it there, in the arrangement of screens, above what is there already.
    void putUp(const QRect& place);
    void drawGround(QPainter& painter, const Theme& theme) const;
    void hideEvent(QHideEvent* event) override;

private:
    void putUpAsPicture(const QRect& place);
    void roundCorners(QSize size);

    double cornerRadius_;
    std::unique_ptr<LayerPicture> layer_;
};

} // namespace lumnara
