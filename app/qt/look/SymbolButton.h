#pragma once

#include <QIcon>
#include <QToolButton>

namespace lumnara {

/// A flat button of one symbol in the colours of its palette. Its title is its tool tip and accessible name.
class SymbolButton : public QToolButton {
public:
    SymbolButton(const QString& symbol, const QString& title);

    void setSymbol(const QString& symbol);
    void setTitle(const QString& title);
    const QString& symbol() const { return symbol_; }

    QSize sizeHint() const override { return {side, side}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int side = 28;

    QString symbol_;
};

/// The symbol for a line of a menu, drawn in the colours that the program has by then.
QIcon symbolIcon(const QString& symbol);

} // namespace lumnara
