#pragma once

#include "core/async/Loop.h"
#include "core/platform/mac/missioncontrol/DockMissionControlDriver.h"

#include <functional>
#include <optional>
#include <string>

namespace lumnara::testing {

/// The driver, with what it was asked for.
class WatchedDriver : public DockMissionControlDriver {
public:
    WatchedDriver(const async::Loop& loop, const MissionControlSeams& seams)
        : DockMissionControlDriver(seams),
          loop_(loop) {}

    int opens = 0;
    int escapes = 0;
    int moves = 0;
    int presses = 0;
    int drags = 0;
    int releases = 0;
    int looks = 0; ///< at a bar
    int removals = 0;
    /// Is called before each of these, counted already, and before the pointer is put anywhere.
    std::function<void()> onCall;
    std::optional<Point> asked;  ///< what was told of the pointer
    std::optional<Point> warped; ///< where it was put last
    /// Nothing was asked for since.
    bool restsAfterWarp = true;
    std::optional<SpacesBarButtons> lastBar;
    /// Is told each step with its time; drags that follow each other are one step.
    std::function<void(const std::string&)> onStep;

    void open() override;
    void pressEscape() override;
    std::optional<SpacesBarButtons> spacesBarButtons(const std::optional<Rect>& displayFrame) override;
    bool removeDesktop(int index, const std::string& title) override;
    void movePointer(Point to) override;
    void pressPointer(Point at) override;
    void dragPointer(Point to) override;
    void releasePointer(Point at) override;
    Point pointerLocation() override;
    void warpPointer(Point to) override;
    bool addDesktop(const std::optional<Rect>& displayFrame) override;
    bool addDesktopByDescription() override;

private:
    void begin(int& count, const std::string& what);
    void step(const std::string& what);
    void tellDrags();

    const async::Loop& loop_;
    int untold_ = 0; ///< drags
    Point draggedTo_;
};

} // namespace lumnara::testing
