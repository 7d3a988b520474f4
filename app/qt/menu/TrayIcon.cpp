#include "app/qt/menu/TrayIcon.h"

#include "app/qt/board/BoardContent.h"
#include "app/qt/look/Theme.h"
#include "app/qt/menu/DesktopMenuView.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>

namespace lumnara {
namespace {

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
                painter.setBrush(lit ? color : trayNeutral());
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

} // namespace

// The toolkit must not be asked for a tray before there is one: it would remember that the bus has none.
TrayIcon::TrayIcon(DesktopCatalog& catalog, AppSettings& settings)
    : catalog_(catalog),
      host_([this] { appear(); }) {
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
    linkModeChanged_ = settings.displayLinkMode.subscribe([this](DisplayLinkMode) { refresh(); });
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
    icon_->setIcon(iconFor(color.isValid() ? color : trayNeutral()));
    icon_->setToolTip(QString::fromStdString(trayToolTip(catalog_)));
    if (!menuOpen_) fillMenu(menu_, desktopMenu(catalog_), onChosen);
}

} // namespace lumnara
