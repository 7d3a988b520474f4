#pragma once

#include "core/platform/mac/server/PropertyList.h"
#include "core/platform/mac/server/WindowServer.h"
#include "core/platform/sim/SimulatedRandom.h"
#include "core/seams/Screens.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

struct SimulatedSpace {
    SpaceID id;
    /// Empty for the first desktop of a display.
    std::string uuid;
    SpaceKind kind = SpaceKind::user;
    /// The window that has a full-screen Space to itself.
    WindowNumber fullscreenWindow = 0;
};

/// A display of the window server: a screen, or "Main" for all of them.
struct SimulatedDisplay {
    std::string uuid;
    std::vector<SimulatedSpace> spaces;
    SpaceID current;

    const SimulatedSpace* find(SpaceID space) const;
    /// The place of a Space that is there.
    std::size_t indexOf(SpaceID space) const;
    /// Full-screen Spaces don't count.
    std::size_t desktopCount() const;
};

/// Screens, and the Spaces of each display in their order: what is where, without time. Ids are given out
/// once in a login; a full-screen Space that ends takes its id and uuid along.
class SimulatedLayout {
public:
    SimulatedLayout(SimulatedRandom& random, bool separateSpaces)
        : random_(random),
          separateSpaces_(separateSpaces) {}

    const std::vector<ScreenInfo>& screens() const { return screens_; }
    const std::vector<SimulatedDisplay>& displays() const { return displays_; }

    /// Adds a screen with so many desktops, or with those that it took along when it was here before. Where
    /// screens share their Spaces, the first one brings them.
    void addScreen(ScreenInfo screen, int desktops);
    /// Takes a screen away that isn't the last one. Another display takes over the Spaces that it had to
    /// itself, and gives them back when it comes again.
    void removeScreen(std::string_view uuid);
    /// Gives all screens, in their order, other places or sizes.
    void moveScreens(const std::vector<Rect>& frames);
    SpaceID addDesktop(std::string_view display);
    /// Adds a Space for the window behind the one that the display shows.
    SpaceID addFullscreen(std::string_view display, WindowNumber window);
    /// Takes a Space away that isn't the last desktop of its display; a neighbour is shown in place of it.
    /// Returns the neighbour, or nothing when the Space stays.
    std::optional<SpaceID> remove(SpaceID space);
    void show(SpaceID space);
    /// Gives a Space another place on its display; the last one for a place behind it.
    void moveTo(SpaceID space, std::size_t place);
    /// Logs in anew: every Space has another id, and what names it across logins stays.
    void renumber();

    /// The display of that uuid, in any case, or null.
    const SimulatedDisplay* display(std::string_view uuid) const;
    /// The display that holds a Space, or null.
    const SimulatedDisplay* displayOf(SpaceID space) const;
    bool isShown(SpaceID space) const;
    /// The display for a point; the first one for a point off all screens, null when there is none.
    const SimulatedDisplay* displayAt(Point point) const;

private:
    SimulatedDisplay* mutableDisplay(std::string_view uuid);
    /// What is left of the Spaces that went away when the display was unplugged.
    std::vector<SimulatedSpace> takeBack(const std::string& display);
    /// Takes a Space off its display, which shows a neighbour in place of it. Returns the neighbour.
    static SpaceID detach(SimulatedDisplay& from, SpaceID space);
    SpaceID newID() { return {lastID_ += 1 + random_.below(40)}; }

    SimulatedRandom& random_;
    bool separateSpaces_;
    std::uint64_t lastID_ = 0;
    std::vector<ScreenInfo> screens_;
    std::vector<SimulatedDisplay> displays_;
    /// Of unplugged displays, the Spaces as they were before they went to another one.
    std::map<std::string, std::vector<SimulatedSpace>> guests_;
};

/// The window server's property list of managed display spaces.
PropertyValue managedDisplaySpacesOf(const std::vector<SimulatedDisplay>& displays);

} // namespace lumnara
