#include "app/qt/TrayIcon.h"

#include "app/qt/BoardContent.h"
#include "app/qt/Theme.h"

#include <QAction>
#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace lumnara {
namespace {

constexpr double hostCheckSeconds = 5;
/// Stands out from light and dark panels alike.
const QColor quietSquare(0x8A, 0x93, 0xA4);

/// Four squares, of which the current desktop's colour fills one.
QIcon iconFor(const QColor& color) {
    QIcon icon;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        QPixmap picture(side, side);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const int margin = side / 11;
        const int gap = std::max(2, side / 9);
        const int square = (side - 2 * margin - gap) / 2;
        for (const int row : {0, 1}) {
            for (const int column : {0, 1}) {
                const bool lit = row == 0 && column == 0;
                painter.setBrush(lit ? color : quietSquare);
                painter.setOpacity(lit ? 1 : 0.7);
                painter.drawRoundedRect(
                    QRectF(margin + column * (square + gap), margin + row * (square + gap), square, square),
                    square * 0.28, square * 0.28);
            }
        }
        painter.end();
        icon.addPixmap(picture);
    }
    return icon;
}

/// A dot in the desktop's colour, a ring for a desktop without one; the current desktop's is checked.
QIcon dotFor(const DesktopMenuItem& item) {
    constexpr int side = 32;
    const QColor own = item.color ? colorNamed(*item.color) : QColor();
    QPixmap picture(side, side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(item.isDimmed ? 0.45 : 1);
    if (item.isCurrent) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(own.isValid() ? own : quietSquare);
        painter.drawEllipse(QRectF(2, 2, side - 4, side - 4));
        painter.setPen(QPen(Qt::white, 3.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(QPolygonF({{9.5, 16.5}, {14, 21}, {22.5, 11.5}}));
    } else {
        painter.setPen(own.isValid() ? QPen(Qt::NoPen) : QPen(quietSquare, 2.5));
        painter.setBrush(own.isValid() ? QBrush(own) : QBrush(Qt::NoBrush));
        painter.drawEllipse(QRectF(7, 7, side - 14, side - 14));
    }
    painter.end();
    return QIcon(picture);
}

QFont boldened(QFont font) {
    font.setBold(true);
    return font;
}

} // namespace

TrayIcon::TrayIcon(async::Loop& loop, DesktopCatalog& catalog) : catalog_(catalog) {
    QObject::connect(&menu_, &QMenu::aboutToShow, &menu_, [this] {
        menuOpen_ = true;
        if (onMenuTracking) onMenuTracking(true);
    });
    QObject::connect(&menu_, &QMenu::aboutToHide, &menu_, [this] {
        menuOpen_ = false;
        if (onMenuTracking) onMenuTracking(false);
        // The chosen line is still to be told of; then the menu may change.
        QMetaObject::invokeMethod(&menu_, [this] { refresh(); }, Qt::QueuedConnection);
    });
    displaysChanged_ = catalog_.displays.subscribe([this](const auto&) { refresh(); });
    errorChanged_ = catalog_.lastError.subscribe([this](const auto&) { refresh(); });
    // The focus may have gone to another display with nothing else changed.
    refreshed_ = catalog_.refreshCount.subscribe([this](int) { refresh(); });
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        appear();
    } else {
        hostCheck_ = std::make_unique<async::Repeating>(loop, hostCheckSeconds, [this] {
            if (!QSystemTrayIcon::isSystemTrayAvailable()) return;
            appear();
            hostCheck_.reset();
        });
    }
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::appear() {
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(&menu_);
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, &menu_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger && onOpenBoard) onOpenBoard();
                     });
    refresh();
    icon_->show();
}

void TrayIcon::showMessage(const QString& text, double seconds) {
    if (icon_ && QSystemTrayIcon::supportsMessages())
        icon_->showMessage(QStringLiteral("Lumnara"), text, icon_->icon(), static_cast<int>(seconds * 1000));
}

void TrayIcon::refresh() {
    if (!icon_) return;
    const Desktop* focused = catalog_.focusedDesktop();
    const QColor color = focused ? colorOf(*focused) : QColor();
    icon_->setIcon(iconFor(color.isValid() ? color : quietSquare));
    icon_->setToolTip(QString::fromStdString(trayToolTip(catalog_)));
    if (!menuOpen_) fillMenu();
}

void TrayIcon::fillMenu() {
    menu_.clear();
    for (const DesktopMenuItem& item : desktopMenu(catalog_)) addItem(item);
}

void TrayIcon::addItem(const DesktopMenuItem& item) {
    using Kind = DesktopMenuItem::Kind;
    if (item.kind == Kind::separator) {
        menu_.addSeparator();
        return;
    }
    // An ampersand in a name is no mnemonic.
    QAction* action = menu_.addAction(QString::fromStdString(item.title).replace("&", "&&"));
    switch (item.kind) {
    case Kind::header:
        action->setFont(boldened(menu_.font()));
        action->setEnabled(false);
        break;
    case Kind::message: action->setEnabled(false); break;
    case Kind::desktop:
        action->setIcon(dotFor(item));
        action->setIconVisibleInMenu(true);
        if (item.isCurrent) action->setFont(boldened(menu_.font()));
        QObject::connect(action, &QAction::triggered, &menu_, [this, desktop = *item.desktop] {
            if (onSwitch) onSwitch(desktop);
        });
        break;
    case Kind::openBoard:
        QObject::connect(action, &QAction::triggered, &menu_, [this] {
            if (onOpenBoard) onOpenBoard();
        });
        break;
    case Kind::quit:
        QObject::connect(action, &QAction::triggered, &menu_, [this] {
            if (onQuit) onQuit();
        });
        break;
    case Kind::separator: break;
    }
}

} // namespace lumnara
