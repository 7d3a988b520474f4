#include "app/qt/look/SymbolButton.h"

#include "app/qt/look/Symbols.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QStyleOptionToolButton>

#include <algorithm>

namespace lumnara {
namespace {

constexpr double symbolSide = 16;
constexpr float disabledStrength = 0.3F;

class SymbolIconEngine : public QIconEngine {
public:
    explicit SymbolIconEngine(QString symbol) : symbol_(std::move(symbol)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const bool marked = mode == QIcon::Active || mode == QIcon::Selected;
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        drawSymbol(*painter, symbol_, rect,
                   QGuiApplication::palette().color(group, marked ? QPalette::HighlightedText
                                                                  : QPalette::WindowText));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap picture(size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return picture;
    }
    QIconEngine* clone() const override { return new SymbolIconEngine(symbol_); }

private:
    QString symbol_;
};

} // namespace

SymbolButton::SymbolButton(const QString& symbol, const QString& title) : symbol_(symbol) {
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setTitle(title);
}

void SymbolButton::setSymbol(const QString& symbol) {
    symbol_ = symbol;
    update();
}

void SymbolButton::setTitle(const QString& title) {
    setToolTip(title);
    setAccessibleName(title);
}

void SymbolButton::paintEvent(QPaintEvent*) {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.features &= ~QStyleOptionToolButton::HasMenu;
    QPainter painter(this);
    style()->drawComplexControl(QStyle::CC_ToolButton, &option, &painter, this);
    QRectF box(0, 0, symbolSide, symbolSide);
    box.moveCenter(QRectF(rect()).center());
    QColor ink = palette().color(QPalette::Active, QPalette::WindowText);
    if (!isEnabled()) ink.setAlphaF(ink.alphaF() * disabledStrength);
    drawSymbol(painter, symbol_, box, ink);
}

QIcon symbolIcon(const QString& symbol) { return QIcon(new SymbolIconEngine(symbol)); }

} // namespace lumnara
