#pragma once

#include "core/async/Timer.h"
#include "core/platform/sim/MacPicture.h"
#include "core/platform/sim/SimulatedMac.h"

#include <QPoint>
#include <QRect>
#include <QWidget>

#include <functional>
#include <string>
#include <vector>

namespace lumnara {

/// Where a simulated Mac is drawn as its time goes by, each of its screens as large as it is. What the person
/// at the real mouse and keyboard does here, the user of the simulated Mac does. The Mac outlives the view.
class MacView : public QWidget {
public:
    MacView(async::Loop& loop, SimulatedMac& mac);

    /// The places of so many screens side by side in a view of that size.
    static std::vector<QRect> areas(QSize view, int count);
    /// The same in points of the arrangement of all screens, where the view stands now.
    std::vector<Rect> frames(int count) const;

    /// The view stands elsewhere, and the Mac's screens with it.
    void moveScreens();

    /// The screen that was clicked last: the jobs are done there.
    std::string chosenScreen() const;

    /// A swipe of the user's own on the screen under the pointer, with an animation.
    void swipe(bool toTheRight);
    void openMissionControl();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void look();
    void followPointer();
    void post(MouseEventType type, Point at);
    void raiseWindowAt(Point at);

    async::Loop& loop_;
    SimulatedMac& mac_;
    MacPicture picture_;
    std::string chosen_;
    QPoint lastPointer_;
    async::Repeating frame_;
};

} // namespace lumnara
