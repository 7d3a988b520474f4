#pragma once

#include "app/qt/sim/MacJobs.h"
#include "app/qt/sim/MacView.h"
#include "core/platform/Platform.h"

#include <QLabel>
#include <QWidget>

#include <memory>

class QHBoxLayout;

namespace lumnara {

/// A simulated Mac to be watched and tried: its screens at their real pace, with a row of what a user does
/// there, of the jobs that script Mission Control, and of what can go wrong.
class SimulatedMacWindow : public QWidget {
public:
    /// Puts the window up, and furnishes the Mac with screens that stand where they are drawn. The loop and
    /// the Mac, which has no screens yet, outlive the window.
    SimulatedMacWindow(async::Loop& loop, SimulatedMac& mac);

    /// Offers the jobs too. The arranger lives for as long as the loop turns.
    void offerJobs(DesktopArranger& arranger);

    std::function<void()> onClosed;

protected:
    void moveEvent(QMoveEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void addButton(const QString& text, const QString& tip, std::function<void()> action);
    void addFaults();
    void tell(const std::string& status);

    async::Loop& loop_;
    SimulatedMac& mac_;
    MacView view_;
    QHBoxLayout* row_;
    QLabel status_;
    std::unique_ptr<MacJobs> jobs_;
};

} // namespace lumnara
