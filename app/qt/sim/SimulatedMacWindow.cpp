#include "app/qt/sim/SimulatedMacWindow.h"

#include "app/qt/look/Theme.h"
#include "core/platform/sim/SampleMac.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

namespace lumnara {
namespace {

constexpr int screenCount = 2;
/// Of the real screen that the window takes at first.
constexpr double firstPart = 0.94;

} // namespace

SimulatedMacWindow::SimulatedMacWindow(async::Loop& loop, SimulatedMac& mac, DesktopArranger& arranger)
    : mac_(mac),
      view_(loop, mac),
      row_(new QHBoxLayout),
      jobs_(loop, mac, arranger) {
    setWindowTitle(QStringLiteral("Lumnara on a simulated Mac"));
    status_.setTextFormat(Qt::PlainText);
    status_.setText(
        QStringLiteral("Click a screen to choose it. Control with an arrow swipes, F3 opens Mission "
                       "Control, Option+1 the Board."));
    addButton(QStringLiteral("◀ Swipe"), QStringLiteral("To the Space on the left (Control+Left)"),
              [this] { view_.swipe(false); });
    addButton(QStringLiteral("Swipe ▶"), QStringLiteral("To the Space on the right (Control+Right)"),
              [this] { view_.swipe(true); });
    addButton(QStringLiteral("Mission Control"), QStringLiteral("Open or close it (F3)"),
              [this] { view_.openMissionControl(); });
    addJobs();
    auto* head = new QWidget;
    head->setLayout(row_);
    row_->setContentsMargins(14, 10, 14, 6);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(head);
    column->addWidget(&view_, 1);
    status_.setContentsMargins(16, 8, 16, 10);
    column->addWidget(&status_);

    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const QSize size = screen.size() * firstPart;
    setGeometry(QRect(screen.center() - QPoint(size.width() / 2, size.height() / 2), size));
    show();
    furnish(mac_, view_.frames(screenCount));
    view_.setFocus();
}

void SimulatedMacWindow::addJobs() {
    jobs_.onStatus = [this](const std::string& status) { tell(status); };
    row_->addSpacing(18);
    addButton(QStringLiteral("Reverse Desktops"),
              QStringLiteral("Reorder the chosen screen in Mission Control"),
              [this] { jobs_.reverse(view_.chosenScreen()); });
    addButton(QStringLiteral("New Desktop"),
              QStringLiteral("Add one to the chosen screen in Mission Control"),
              [this] { jobs_.add(view_.chosenScreen()); });
    addButton(QStringLiteral("Remove Desktop"),
              QStringLiteral("Remove the last desktop of the chosen screen in Mission Control"),
              [this] { jobs_.removeLast(view_.chosenScreen()); });
    row_->addSpacing(18);
    addFaults();
    row_->addStretch();
}

void SimulatedMacWindow::addButton(const QString& text, const QString& tip, std::function<void()> action) {
    auto* button = new QPushButton(text);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::NoFocus);
    connect(button, &QPushButton::clicked, this, std::move(action));
    row_->addWidget(button);
}

void SimulatedMacWindow::addFaults() {
    auto* button = new QToolButton;
    button->setText(QStringLiteral("Let Something Go Wrong "));
    button->setPopupMode(QToolButton::InstantPopup);
    button->setFocusPolicy(Qt::NoFocus);
    auto* menu = new QMenu(button);
    for (const SimulatedFault fault : everySimulatedFault) {
        const std::string name(nameOf(fault));
        menu->addAction(QString::fromStdString(name), this, [this, fault, name] {
            mac_.inject(fault);
            tell("Fault: " + name + ".");
        });
    }
    menu->addSeparator();
    menu->addAction(QStringLiteral("All is well again"), this, [this] {
        mac_.heal();
        tell("All faults are over.");
    });
    button->setMenu(menu);
    row_->addWidget(button);
}

void SimulatedMacWindow::tell(const std::string& status) { status_.setText(QString::fromStdString(status)); }

void SimulatedMacWindow::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    view_.moveScreens();
}

void SimulatedMacWindow::closeEvent(QCloseEvent* event) {
    QWidget::closeEvent(event);
    if (onClosed) onClosed();
}

} // namespace lumnara
