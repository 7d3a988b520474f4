#pragma once

#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/platform/sim/MissionControlPicture.h"
#include "core/platform/sim/SimulatedPointer.h"
#include "core/platform/sim/SimulatedSpacesBar.h"
#include "core/platform/sim/SimulatedStage.h"
#include "core/platform/sim/SimulatedWindows.h"
#include "core/seams/EventServices.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Mission Control as the Dock shows it: it comes and goes with an animation, has a Spaces bar on each
/// display, lifts the thumbnail that is held and dragged, makes room for it and changes the order on the
/// drop. It is asked by events, and by the actions of its elements. Main thread.
class SimulatedMissionControl {
public:
    /// macOS allows so many desktops on a display.
    static constexpr std::size_t desktopsPerDisplay = 16;

    SimulatedMissionControl(async::Loop& loop, SimulatedRandom& random, SimulatedFaults& faults,
                            SimulatedStage& stage, SimulatedLayout& layout, SimulatedWindows& windows,
                            const SimulatedPointer& pointer);

    /// What is on the screen now.
    MissionControlPicture picture() const;
    /// The picture is another one now. While isAnimating() it also changes from one moment to the next,
    /// without a call.
    async::Signal<> changed;
    bool isAnimating() const;

    /// From the first moment of its coming to the last of its going.
    bool isUp() const { return phase_ != Phase::closed && phase_ != Phase::asked; }

    /// The application was opened: it comes a while later, or goes when it is there.
    void toggle();
    /// Escape: it goes.
    void dismiss();
    /// It is gone at once, and nothing of what it was about to do happens.
    void vanish();

    /// An event of the mouse has come through.
    void point(const MouseEvent& event);
    /// The pointer was put elsewhere, which no event tells.
    void collapseBars();
    /// For so many seconds all thumbnails stand so many points beside their places.
    void shift(double points, double seconds);
    /// An opening that never ends comes to its end.
    void heal();

    // What the elements of its bars tell and do, by the uuid of their screen.

    /// The bar with its thumbnails where they stand; a dragged one is told in the gap that the others leave.
    std::optional<SpacesBarPicture> bar(const std::string& screen) const;
    /// Asks for the removal of a desktop, which happens a while later. False when it isn't there, or stays
    /// because it is none or the last, or when Mission Control is on its way out.
    bool remove(SpaceID space);
    /// Asks for another desktop, which comes a while later. False when the bar shows no button for it.
    bool add(const std::string& screen);

    /// Whose windows it shows.
    std::int32_t dockPid = 0;
    /// What takes a Space away, with all that follows from it.
    std::function<void(SpaceID)> removeSpace;

private:
    enum class Phase { closed, asked, opening, open, closing };
    struct Grip {
        std::string screen;
        SpaceID space;
        Point at;
        async::Nanos since{};
        async::Nanos lastDrag{};
        int moves = 0;
        bool isLifted = false;
        /// Where it would drop, among all thumbnails.
        std::size_t place = 0;
    };

    void enter(Phase phase, double seconds);
    void showOverlays();
    void hideOverlays();
    void after(double seconds, std::function<void()> action);

    const SimulatedDisplay* displayOn(const std::string& screen) const;
    std::string titleOf(const SimulatedDisplay& display, const SimulatedSpace& space) const;
    std::optional<SpacesBarPicture> picture(const std::string& screen, bool showsDragged) const;

    void press(Point at);
    void drag(Point to);
    void release(Point at);
    void drop(const Grip& grip);
    void makeRoom(Point pointer);

    async::Loop& loop_;
    SimulatedRandom& random_;
    SimulatedFaults& faults_;
    SimulatedStage& stage_;
    SimulatedLayout& layout_;
    SimulatedWindows& windows_;
    const SimulatedPointer& pointer_;
    Phase phase_ = Phase::closed;
    SimulatedMotion opening_;
    std::unique_ptr<async::Delayed> next_;
    /// Of the screens, while it is up.
    std::map<std::string, SimulatedSpacesBar> bars_;
    std::vector<WindowNumber> overlays_;
    std::optional<Grip> grip_;
    double stripTop_;
    double shift_ = 0;
    async::Nanos shiftedUntil_{};
    std::map<int, std::unique_ptr<async::Delayed>> pending_;
    int lastPending_ = 0;
};

} // namespace lumnara
