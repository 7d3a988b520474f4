#pragma once

#include "core/platform/sim/SimulatedLayout.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

struct SimulatedWindow {
    WindowNumber number = 0;
    std::int32_t ownerPid = 0;
    std::string ownerName{};
    int layer = 0;
    double alpha = 1;
    Rect bounds{};
    bool isOrderedIn = false;
    /// Where it is; empty for a window that hasn't been ordered in yet.
    std::vector<SpaceID> spaces{};
    /// It shows whichever Space does, and is told to be on none.
    bool isOnEverySpace = false;
};

/// All windows of the session, front to back, and the Spaces that hold them.
class SimulatedWindows {
public:
    explicit SimulatedWindows(const SimulatedLayout& layout) : layout_(layout) {}

    const std::vector<SimulatedWindow>& all() const { return windows_; }
    const SimulatedWindow* find(WindowNumber number) const;

    /// Takes a window in, in front of the others of its layer; the number is set here.
    WindowNumber add(SimulatedWindow window);
    void remove(WindowNumber number);
    void removeAllOf(std::int32_t pid);
    void clear();
    /// To the front of its layer. A window that was on no Space comes to the one shown where it lies, or to
    /// the first desktop there.
    void orderFront(WindowNumber number);
    void orderOut(WindowNumber number);
    void place(WindowNumber number, Rect bounds);

    /// A Space that a full-screen window has to itself takes only windows of the same owner.
    void addToSpaces(WindowNumber number, const std::vector<SpaceID>& spaces);
    void removeFromSpaces(WindowNumber number, const std::vector<SpaceID>& spaces);
    /// The windows that are on `from` alone go to `to`, or to the first desktop there; all others leave
    /// `from`. `to` is there.
    void moveOff(SpaceID from, SpaceID to);

    /// The windows with their middles in the one rectangle go to the same place in the other.
    void moveBounds(const Rect& from, const Rect& to);

    /// Ordered in, not wholly transparent, and on a Space that is shown.
    bool isOnScreen(const SimulatedWindow& window) const;
    /// The window list, front to back.
    PropertyList list(WindowListOption option) const;

private:
    bool takes(const SimulatedSpace& space, const SimulatedWindow& window) const;
    /// The wanted Space if it takes the window, else the first desktop.
    SpaceID spaceFor(const SimulatedWindow& window, const SimulatedDisplay& display, SpaceID wanted) const;
    std::vector<SimulatedWindow>::iterator position(WindowNumber number);
    void insertInFront(SimulatedWindow window);

    const SimulatedLayout& layout_;
    std::vector<SimulatedWindow> windows_;
    WindowNumber lastNumber_ = 30;
};

} // namespace lumnara
