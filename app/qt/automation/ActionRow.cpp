#include "app/qt/automation/ActionRow.h"

#include "app/automation/AutomationTexts.h"
#include "app/qt/look/SecondaryLabel.h"
#include "app/qt/look/Symbols.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include <algorithm>

namespace lumnara {
namespace {

constexpr double symbolSide = 16;
constexpr double inset = 6; // below the icon of the automation
constexpr double detailGap = 10;
constexpr double rowRadius = 6;

} // namespace

ActionRow::ActionRow() {
    setObjectName(QStringLiteral("action"));
    setFixedHeight(rowHeight);
    setFocusPolicy(Qt::StrongFocus);
    auto* line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 3, 0);
    line->setSpacing(0);
    line->addStretch();
    up_ = button("chevron.up", "Move Up (Alt+Up)", Command::moveUp);
    down_ = button("chevron.down", "Move Down (Alt+Down)", Command::moveDown);
    edit_ = button("pencil", "Edit (Enter)", Command::edit);
    SymbolButton* remove = button("trash", "Remove (Delete)", Command::remove);
    for (SymbolButton* each : {up_, down_, edit_, remove}) line->addWidget(each);
}

SymbolButton* ActionRow::button(const char* symbol, const char* title, Command which) {
    auto* button = new SymbolButton(QString::fromLatin1(symbol), QString::fromLatin1(title));
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QToolButton::clicked, this, [this, which] { command(which); });
    return button;
}

void ActionRow::show(const AutomationAction& action, bool isFirst, bool isLast) {
    const std::string_view symbol = symbolOf(action);
    symbol_ = QString::fromLatin1(symbol.data(), static_cast<qsizetype>(symbol.size()));
    label_ = QString::fromStdString(labelOf(action)).simplified();
    detail_ = QString::fromStdString(detailOf(action)).simplified();
    up_->setEnabled(!isFirst);
    down_->setEnabled(!isLast);
    setAccessibleName(detail_.isEmpty() ? label_ : label_ + ", " + detail_);
    setAccessibleDescription(QStringLiteral("Enter edits, Alt+Up and Alt+Down move, Delete removes."));
    tellWhatIsCut();
    update();
}

void ActionRow::command(Command which) {
    if ((which == Command::moveUp && !up_->isEnabled()) ||
        (which == Command::moveDown && !down_->isEnabled()))
        return;
    if (onCommand) onCommand(which);
}

double ActionRow::textWidth() const { return up_->x() - detailGap - textLeft; }

void ActionRow::tellWhatIsCut() {
    const QString whole = detail_.isEmpty() ? label_ : label_ + QStringLiteral("  ") + detail_;
    setToolTip(fontMetrics().horizontalAdvance(whole) + detailGap > textWidth() ? whole : QString());
}

void ActionRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = palette().color(QPalette::WindowText);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), rowRadius, rowRadius);
    }
    drawSymbol(painter, symbol_, {inset, (height() - symbolSide) / 2, symbolSide, symbolSide}, ink);
    QRectF box(textLeft, 0, textWidth(), height());
    const auto draw = [&](const QString& text, QColor color) {
        const QString fitted = fontMetrics().elidedText(text, Qt::ElideRight, static_cast<int>(box.width()));
        painter.setPen(color);
        painter.drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, fitted);
        box.setLeft(box.left() + fontMetrics().horizontalAdvance(fitted) + detailGap);
    };
    draw(label_, ink);
    QColor soft = ink;
    soft.setAlphaF(soft.alphaF() * SecondaryLabel::softness);
    if (!detail_.isEmpty() && box.width() > symbolSide) draw(detail_, soft);
}

void ActionRow::keyPressEvent(QKeyEvent* event) {
    const bool alt = event->modifiers().testFlag(Qt::AltModifier);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2: return command(Command::edit);
    case Qt::Key_Delete:
    case Qt::Key_Backspace: return command(Command::remove);
    case Qt::Key_Up: return command(alt ? Command::moveUp : Command::focusBefore);
    case Qt::Key_Down: return command(alt ? Command::moveDown : Command::focusAfter);
    default: QWidget::keyPressEvent(event);
    }
}

void ActionRow::mouseDoubleClickEvent(QMouseEvent*) { command(Command::edit); }

void ActionRow::contextMenuEvent(QContextMenuEvent* event) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const char* title, Command which, bool isEnabled = true) {
        menu->addAction(QString::fromLatin1(title), this, [this, which] { command(which); })
            ->setEnabled(isEnabled);
    };
    add("Edit\tEnter", Command::edit);
    add("Move Up\tAlt+Up", Command::moveUp, up_->isEnabled());
    add("Move Down\tAlt+Down", Command::moveDown, down_->isEnabled());
    add("Remove\tDelete", Command::remove);
    menu->popup(event->reason() == QContextMenuEvent::Keyboard ? mapToGlobal(QPoint(24, height() / 2))
                                                               : event->globalPos());
}

void ActionRow::focusInEvent(QFocusEvent* event) {
    update();
    QWidget::focusInEvent(event);
}

void ActionRow::focusOutEvent(QFocusEvent* event) {
    update();
    QWidget::focusOutEvent(event);
}

void ActionRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    tellWhatIsCut();
}

} // namespace lumnara
