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

std::size_t SimulatedDisplay::desktopCount() const {
    return static_cast<std::size_t>(std::ranges::count(spaces, SpaceKind::user, &SimulatedSpace::kind));
}

void SimulatedLayout::addScreen(ScreenInfo screen, int desktops) {
    const std::string uuid = separateSpaces_ ? screen.uuid : "Main";
    screens_.push_back(std::move(screen));
    if (display(uuid)) return;
    SimulatedDisplay added{uuid, takeBack(uuid), {}};
    const bool isNew = std::ranges::count(added.spaces, SpaceKind::user, &SimulatedSpace::kind) == 0;
    for (int number = 0; isNew && number < desktops; ++number)
        added.spaces.push_back({newID(), number == 0 ? "" : random_.uuid(), SpaceKind::user, 0});
    added.current = added.spaces.at(0).id;
    displays_.push_back(std::move(added));
}

void SimulatedLayout::removeScreen(std::string_view uuid) {
    const auto screen = std::ranges::find_if(
        screens_, [=](const ScreenInfo& each) { return text::equalsIgnoringCase(each.uuid, uuid); });
    if (screen == screens_.end() || screens_.size() == 1) return;
    screens_.erase(screen);
    const SimulatedDisplay* leaving = display(uuid);
    if (!leaving) return;
    SimulatedDisplay left = *leaving;
    displays_.erase(displays_.begin() + (leaving - displays_.data()));
    guests_[left.uuid] = left.spaces;
    for (SimulatedSpace& space : left.spaces) {
        if (space.uuid.empty()) space.uuid = random_.uuid(); // it is the first one there no longer
        displays_.front().spaces.push_back(std::move(space));
    }
}

std::vector<SimulatedSpace> SimulatedLayout::takeBack(const std::string& uuid) {
    const auto guests = guests_.extract(uuid);
    std::vector<SimulatedSpace> back;
    if (!guests) return back;
    for (const SimulatedSpace& guest : guests.mapped()) {
        const SimulatedDisplay* host = displayOf(guest.id);
        const bool stays = !host || (guest.kind == SpaceKind::user && host->desktopCount() == 1);
        if (stays) continue;
        detach(*mutableDisplay(host->uuid), guest.id);
        back.push_back(guest);
    }
    return back;
}

void SimulatedLayout::moveScreens(const std::vector<Rect>& frames) {
    for (std::size_t index = 0; index < screens_.size(); ++index) screens_[index].frame = frames.at(index);
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
    if (holder->find(space)->kind == SpaceKind::user && holder->desktopCount() == 1) return std::nullopt;
    return detach(*mutableDisplay(holder->uuid), space);
}

SpaceID SimulatedLayout::detach(SimulatedDisplay& from, SpaceID space) {
    const std::size_t index = from.indexOf(space);
    from.spaces.erase(from.spaces.begin() + static_cast<std::ptrdiff_t>(index));
    const SpaceID neighbour = from.spaces[index == 0 ? 0 : index - 1].id;
    if (from.current == space) from.current = neighbour;
    return neighbour;
}

void SimulatedLayout::moveTo(SpaceID space, std::size_t place) {
    const SimulatedDisplay* holder = displayOf(space);
    if (!holder) return;
    auto& spaces = mutableDisplay(holder->uuid)->spaces;
    const auto from = spaces.begin() + static_cast<std::ptrdiff_t>(holder->indexOf(space));
    const auto to = spaces.begin() + static_cast<std::ptrdiff_t>(std::min(place, spaces.size() - 1));
    if (from < to)
        std::rotate(from, from + 1, to + 1);
    else
        std::rotate(to, from, from + 1);
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
