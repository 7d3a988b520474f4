#include "core/platform/sim/SimulatedLayout.h"

#include "core/text/Text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace lumnara {

const SimulatedSpace* SimulatedDisplay::find(SpaceID space) const {
    const auto found = std::ranges::find(spaces, space, &SimulatedSpace::id);
    return found == spaces.end() ? nullptr : &*found;
}

std::size_t SimulatedDisplay::indexOf(SpaceID space) const {
    return static_cast<std::size_t>(std::ranges::find(spaces, space, &SimulatedSpace::id) - spaces.begin());
}

void SimulatedLayout::addScreen(ScreenInfo screen, int desktops) {
    const std::string uuid = separateSpaces_ ? screen.uuid : "Main";
    screens_.push_back(std::move(screen));
    if (display(uuid)) return;
    SimulatedDisplay added{uuid, {}, {}};
    for (int number = 0; number < desktops; ++number)
        added.spaces.push_back({newID(), number == 0 ? "" : random_.uuid(), SpaceKind::user, 0});
    added.current = added.spaces.at(0).id;
    displays_.push_back(std::move(added));
}

SpaceID SimulatedLayout::addDesktop(std::string_view display) {
    SimulatedDisplay* on = mutableDisplay(display);
    if (!on) return {};
    on->spaces.push_back({newID(), random_.uuid(), SpaceKind::user, 0});
    return on->spaces.back().id;
}

SpaceID SimulatedLayout::addFullscreen(std::string_view display, WindowNumber window) {
    SimulatedDisplay* on = mutableDisplay(display);
    if (!on) return {};
    const auto behind = on->spaces.begin() + static_cast<std::ptrdiff_t>(on->indexOf(on->current)) + 1;
    return on->spaces.insert(behind, {newID(), random_.uuid(), SpaceKind::fullscreen, window})->id;
}

std::optional<SpaceID> SimulatedLayout::remove(SpaceID space) {
    const SimulatedDisplay* holder = displayOf(space);
    if (!holder) return std::nullopt;
    SimulatedDisplay* on = mutableDisplay(holder->uuid);
    const std::size_t index = on->indexOf(space);
    if (on->spaces[index].kind == SpaceKind::user &&
        std::ranges::count(on->spaces, SpaceKind::user, &SimulatedSpace::kind) == 1)
        return std::nullopt;
    on->spaces.erase(on->spaces.begin() + static_cast<std::ptrdiff_t>(index));
    const SpaceID neighbour = on->spaces[index == 0 ? 0 : index - 1].id;
    if (on->current == space) on->current = neighbour;
    return neighbour;
}

void SimulatedLayout::show(SpaceID space) {
    if (const SimulatedDisplay* holder = displayOf(space)) mutableDisplay(holder->uuid)->current = space;
}

void SimulatedLayout::renumber() {
    for (SimulatedDisplay& display : displays_) {
        const std::size_t current = display.indexOf(display.current);
        for (SimulatedSpace& space : display.spaces) space.id = newID();
        display.current = display.spaces[current].id;
    }
}

const SimulatedDisplay* SimulatedLayout::display(std::string_view uuid) const {
    for (const SimulatedDisplay& display : displays_)
        if (text::equalsIgnoringCase(display.uuid, uuid)) return &display;
    return nullptr;
}

const SimulatedDisplay* SimulatedLayout::displayOf(SpaceID space) const {
    for (const SimulatedDisplay& display : displays_)
        if (display.find(space)) return &display;
    return nullptr;
}

bool SimulatedLayout::isShown(SpaceID space) const {
    return std::ranges::count(displays_, space, &SimulatedDisplay::current) > 0;
}

const SimulatedDisplay* SimulatedLayout::displayAt(Point point) const {
    if (displays_.empty()) return nullptr;
    for (const ScreenInfo& screen : screens_)
        if (screen.frame.contains(point)) return display(separateSpaces_ ? screen.uuid : "Main");
    return &displays_.front();
}

SimulatedDisplay* SimulatedLayout::mutableDisplay(std::string_view uuid) {
    const SimulatedDisplay* found = display(uuid);
    return found ? &displays_[static_cast<std::size_t>(found - displays_.data())] : nullptr;
}

namespace {

PropertyDictionary dictionaryOf(const SimulatedSpace& space) {
    return {{"id64", space.id.raw},
            {"ManagedSpaceID", static_cast<std::int64_t>(space.id.raw)},
            {"uuid", space.uuid},
            {"type", static_cast<std::int64_t>(space.kind)}};
}

} // namespace

PropertyValue managedDisplaySpacesOf(const std::vector<SimulatedDisplay>& displays) {
    PropertyArray list;
    for (const SimulatedDisplay& display : displays) {
        PropertyArray spaces;
        for (const SimulatedSpace& space : display.spaces) spaces.push_back(dictionaryOf(space));
        list.push_back(PropertyDictionary{{"Display Identifier", display.uuid},
                                          {"Spaces", std::move(spaces)},
                                          {"Current Space", dictionaryOf(*display.find(display.current))}});
    }
    return list;
}

} // namespace lumnara
