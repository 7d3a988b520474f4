#include "app/qt/menu/DesktopMenuView.h"

#include "app/qt/board/BoardContent.h"
#include "app/qt/look/Theme.h"

#include <QAction>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace lumnara {
namespace {

QFont boldened(QFont font) {
    font.setBold(true);
    return font;
}

void drawCheckMark(QPainter& painter, QPointF center, double radius) {
    const double unit = radius / 14;
    painter.setPen(QPen(Qt::white, 3.4 * unit, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(QPolygonF({center + unit * QPointF(-6.5, 0.5), center + unit * QPointF(-2, 5),
                                    center + unit * QPointF(6.5, -4.5)}));
}

/// A dot in the desktop's colour, a ring for a desktop without one; the current desktop's is checked, and a
/// linked one's has a second dot behind it.
QIcon dotFor(const DesktopMenuItem& item) {
    constexpr int side = 32;
    const QColor own = item.color ? colorNamed(*item.color) : QColor();
    const QColor neutral = trayNeutral();
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(item.isDimmed ? 0.45 : 1);

    double radius = item.isCurrent ? 14 : 9;
    QPointF center(side / 2.0, side / 2.0);
    if (item.isLinked) {
        radius = item.isCurrent ? 11 : 8;
        const QPointF apart(item.isCurrent ? 4.5 : 4, 0);
        painter.setPen(Qt::NoPen);
        painter.setBrush(own.isValid() ? own : neutral);
        painter.drawEllipse(center + apart, radius, radius);
        center -= apart;
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.drawEllipse(center, radius + 2.5, radius + 2.5);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    const bool filled = item.isCurrent || own.isValid();
    painter.setPen(filled ? QPen(Qt::NoPen) : QPen(neutral, 2.5));
    painter.setBrush(filled ? QBrush(own.isValid() ? own : neutral) : QBrush(Qt::NoBrush));
    painter.drawEllipse(center, radius, radius);
    if (item.isCurrent) drawCheckMark(painter, center, radius);
    painter.end();
    return QIcon(picture);
}

QString titleOf(const DesktopMenuItem& item) {
    // An ampersand in a name is no mnemonic.
    return QString::fromStdString(item.title).replace("&", "&&");
}

void addItem(QMenu& menu, const DesktopMenuItem& item,
             const std::function<void(const DesktopMenuItem&)>& onChosen) {
    using Kind = DesktopMenuItem::Kind;
    if (item.kind == Kind::separator) {
        menu.addSeparator();
        return;
    }
    if (item.kind == Kind::submenu) {
        fillMenu(*menu.addMenu(titleOf(item)), item.children, onChosen);
        return;
    }
    QAction* action = menu.addAction(titleOf(item));
    switch (item.kind) {
    case Kind::header:
        action->setFont(boldened(menu.font()));
        action->setEnabled(false);
        return;
    case Kind::message: action->setEnabled(false); return;
    case Kind::desktop:
        action->setIcon(dotFor(item));
        action->setIconVisibleInMenu(true);
        if (item.isCurrent) action->setFont(boldened(menu.font()));
        break;
    case Kind::linkMode:
        action->setCheckable(true);
        action->setChecked(item.isChecked);
        break;
    default: break;
    }
    QObject::connect(action, &QAction::triggered, &menu, [item, &onChosen] {
        if (onChosen) onChosen(item);
    });
}

} // namespace

void fillMenu(QMenu& menu, const std::vector<DesktopMenuItem>& items,
              const std::function<void(const DesktopMenuItem&)>& onChosen) {
    menu.clear();
    // A submenu belongs to the menu, not to its line.
    for (QMenu* submenu : menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        submenu->deleteLater();
    for (const DesktopMenuItem& item : items) addItem(menu, item, onChosen);
}

void dress(QMenu& menu, const Theme& theme) {
    const auto css = [](const QColor& color) {
        return QStringLiteral("rgba(%1, %2, %3, %4)")
            .arg(color.red())
            .arg(color.green())
            .arg(color.blue())
            .arg(color.alpha());
    };
    QColor ground = theme.notice;
    ground.setAlpha(255);
    menu.setFont(interfaceFont(14));
    menu.setStyleSheet(
        QStringLiteral("QMenu { background: %1; color: %2; border: 1px solid %3; padding: 6px; }"
                       "QMenu::item { padding: 7px 30px 7px 14px; border-radius: 6px; }"
                       "QMenu::item:selected { background: %4; }"
                       "QMenu::indicator { width: 0; }"
                       "QMenu::separator { height: 1px; background: %4; margin: 6px 8px; }")
            .arg(css(ground), css(theme.text), css(theme.noticeBorder), css(theme.hairline)));
    for (QMenu* submenu : menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly))
        submenu->setFont(menu.font());
}

} // namespace lumnara
