#pragma once

#include "core/async/TestLoop.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/mac/missioncontrol/DesktopAdding.h"
#include "core/platform/mac/missioncontrol/MissionControlDriving.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A Mission Control that behaves: it takes its time to come and go, expands its bar only for a pointer that
/// enters as a person's does, lifts a thumbnail that is held and dragged, makes room for it, and changes the
/// order on the drop. Its fields bend it; it is the window server too. All times are seconds of the loop.
class ScriptedMissionControl : public MissionControlDriving, public DesktopAdding, public SpaceProvider {
public:
    /// Displays stand side by side, 1440 x 900 each.
    ScriptedMissionControl(async::TestLoop& loop, SpaceSnapshot layout);

    // What it is.
    bool trusted = true;
    bool rearrangesByUse = false;
    std::optional<SwitchError> blocked;
    std::map<std::string, Rect> frames;
    double opensAfter = 0.3;
    double closesAfter = 0.25;
    double expandsAfter = 0.4;
    int expandsInRound = 1;
    /// The tree without identifiers or without a button at all.
    bool addButtonHasIdentifier = true;
    bool addButtonShows = true;
    std::string titlePrefix = "Desktop ";
    int firstNumber = 1;

    // What goes wrong; counts are of the next such events.
    int lostDrops = 0;
    int lostPresses = 0;
    int lostEscapes = 0;
    int refusedRemovals = 0;
    int ignoredRemovals = 0;
    int missingBars = 0;
    int damagedBars = 0;
    int failingReadings = 0;
    double readingLag = 0;
    /// Points by which all thumbnails stand to the right of where they should, from the given drag event on.
    double shift = 0;
    int shiftAtDrag = 0;

    /// Called before each call of the interfaces.
    std::function<void()> onCall;

    // What others do.
    SpaceSnapshot layout() const { return history_.back().layout; }
    std::vector<SpaceID> order(const std::string& display) const;
    void change(const std::function<void(SpaceSnapshot&)>& by);
    void closeByItself();
    void collapse() { expandsAt_.reset(); }

    // What was done to it.
    int calls = 0;
    int opens = 0;
    int escapes = 0;
    int moves = 0;
    int drags = 0;
    int presses = 0;
    int releases = 0;
    bool held = false;
    std::vector<SpaceID> dropped;
    std::vector<SpaceID> removed;
    std::vector<SpaceID> added;
    Point pointer{700, 500};
    std::vector<Point> asked;  ///< what pointerLocation told
    std::vector<Point> warped; ///< where the pointer was put back
    /// No pointer event has come since the last warp.
    bool restsAfterWarp = true;
    /// The last that the callers were told; nothing for a bar that couldn't be read, a reading that failed.
    std::optional<SpacesBarButtons> lastBar;
    std::optional<SpaceSnapshot> firstReading;
    std::optional<SpaceSnapshot> lastReading;
    std::vector<double> pauses;

    bool showsNow() const;

    bool isAccessibilityTrusted() override { return called(), trusted; }
    bool mruSpacesEnabled() override { return called(), rearrangesByUse; }
    std::optional<SwitchError> blockingReason() override { return called(), blocked; }
    bool isOpen() override { return called(), showsNow(); }
    std::optional<Rect> displayFrame(const DisplayID& display) override;
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
    async::Task<> pause(double seconds) override;

    bool addDesktop(const std::optional<Rect>& displayFrame) override;
    bool addDesktopByDescription() override;

    SpaceSnapshot snapshot() override;
    std::optional<DisplayID> menuBarDisplay() override { return std::nullopt; }
    std::optional<DisplayID> cursorDisplay() override { return std::nullopt; }
    std::optional<std::string> displayName(const std::string&) override { return std::nullopt; }

private:
    struct Reported {
        double since;
        SpaceSnapshot layout;
    };
    struct Grip {
        std::string display;
        SpaceID space;
        double since;
        Point at;
        int drags = 0;
        double lastDrag = 0;
        bool lifted = false;
    };

    void called();
    double now() const;
    bool isExpanded() const { return showsNow() && expandsAt_ && now() >= *expandsAt_; }
    std::string displayAt(Point point) const;
    std::string displayOf(const std::optional<Rect>& frame) const;
    std::vector<Rect> slots(const std::string& display, std::size_t count) const;
    std::vector<Space> shownOrder(const std::string& display) const;
    std::size_t dropPlace(const std::string& display) const;
    std::optional<SpacesBarButtons> bar(const std::string& display) const;
    bool add(const std::string& display);

    async::TestLoop& loop_;
    std::vector<Reported> history_;
    std::optional<double> opensAt_, closesAt_, expandsAt_;
    int approach_ = 0; ///< 1 from below, 2 in the strip, 3 the small move behind that
    int rounds_ = 0;
    std::optional<Grip> grip_;
    std::string lastBarDisplay_;
    std::uint64_t lastID_ = 1000;
};

} // namespace lumnara::testing
