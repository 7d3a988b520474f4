#include "app/qt/settings/SettingsWindow.h"

#include <QEvent>
#include <QScrollArea>
#include <QVBoxLayout>

namespace lumnara {
namespace {

constexpr int windowMargin = 24;
constexpr QSize usualSize(680, 640);

} // namespace

SettingsWindow::SettingsWindow() {
    setWindowTitle(QStringLiteral("Lumnara Settings"));
    tabs_.setExpanding(false);
    tabs_.setDrawBase(false);
    tabs_.setObjectName(QStringLiteral("settingsPages"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, windowMargin / 2, 0, 0);
    column->setSpacing(0);
    column->addWidget(&tabs_, 0, Qt::AlignHCenter);
    column->addWidget(&pages_, 1);
    connect(&tabs_, &QTabBar::currentChanged, this, [this](int index) {
        pages_.setCurrentIndex(index);
        reloadPage();
    });
    resize(usualSize);
}

void SettingsWindow::add(const QString& title, SettingsPage* page) {
    auto* scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    page->setContentsMargins(windowMargin, windowMargin - 4, windowMargin, windowMargin);
    scroll->setWidget(page);
    pages_.addWidget(scroll);
    tabs_.addTab(title);
}

void SettingsWindow::present() {
    reloadPage();
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

/// The session's own tools may have changed something while the window was behind theirs.
void SettingsWindow::changeEvent(QEvent* event) {
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) reloadPage();
    QDialog::changeEvent(event);
}

void SettingsWindow::reloadPage() {
    if (auto* scroll = qobject_cast<QScrollArea*>(pages_.currentWidget()))
        static_cast<SettingsPage*>(scroll->widget())->reload();
}

} // namespace lumnara
