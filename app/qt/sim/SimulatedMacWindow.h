#pragma once

#include "app/qt/sim/MacJobs.h"
#include "app/qt/sim/MacView.h"

#include <QLabel>
#include <QWidget>

#include <memory>

class QHBoxLayout;

namespace lumnara {

/// A simulated Mac to be watched and tried: its screens at their real pace, with a row of what a user does
/// there, of the jobs that script Mission Control, and of what can go wrong.
class SimulatedMacWindow : public QWidget {
public:
    /// Puts the window up, and furnishes the Mac with screens that stand where they are drawn. The loop, the
    /// Mac, which has no screens yet, and its arranger outlive the window.
    SimulatedMacWindow(async::Loop& loop, SimulatedMac& mac, DesktopArranger& arranger);

    std::function<void()> onClosed;

protected:
    void moveEvent(QMoveEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void addButton(const QString& text, const QString& tip, std::function<void()> action);
    void addJobs();
    void addFaults();
    void tell(const std::string& status);

    SimulatedMac& mac_;
    MacView view_;
    QHBoxLayout* row_;
    QLabel status_;
    MacJobs jobs_;
};

} // namespace lumnara
