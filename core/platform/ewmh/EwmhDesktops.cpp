#include "core/platform/ewmh/EwmhDesktops.h"

#include "core/base/Uuid.h"
#include "core/text/Utf8.h"

#include <algorithm>

namespace lumnara {

namespace {

/// The name of each desktop as text; empty for one without a name.
std::vector<std::string> readableNames(const EwmhState& state) {
    std::vector<std::string> names(state.count);
    for (std::size_t i = 0; i < std::min(state.count, state.names.size()); ++i)
        names[i] = text::sanitizedUtf8(state.names[i]);
    return names;
}

EwmhReading readingOf(std::vector<std::string> uuids, const EwmhState& state) {
    uuids.resize(state.count);
    const auto ids = spaceIDsOf(uuids);
    EwmhReading reading;
    reading.current = state.current;
    for (std::size_t i = 0; i < state.count; ++i) reading.desktops.push_back({ids[i], std::move(uuids[i])});
    return reading;
}

} // namespace

std::optional<std::size_t> EwmhReading::indexOf(SpaceID id) const {
    const auto found = std::ranges::find(desktops, id, &EwmhDesktop::id);
    if (found == desktops.end()) return std::nullopt;
    return static_cast<std::size_t>(found - desktops.begin());
}

EwmhDesktops::EwmhDesktops(const std::shared_ptr<X11Connection>& connection, std::filesystem::path memoryFile)
    : root_(connection),
      file_(std::move(memoryFile)),
      remembered_(file_.load(connection->loop().date())),
      saved_(remembered_) {}

const EwmhReading& EwmhDesktops::read() {
    if (isHeld()) return lastReading_;
    if (const auto current = root_.readCurrentAlone(); current && *current < lastReading_.desktops.size()) {
        lastReading_.current = *current;
        return lastReading_;
    }
    readIdentified();
    save();
    return lastReading_;
}

bool EwmhDesktops::showNames(const std::map<std::string, std::string>& wanted) {
    if (isHeld()) return false;
    const auto state = readIdentified();
    const auto names = namesToShow(state.names, state.count, wanted, remembered_);
    const bool changed = names != state.names;
    // First the file: the window manager's own names would be lost with a crash in between.
    save();
    if (changed) root_.setNames(names);
    return changed;
}

std::shared_ptr<const void> EwmhDesktops::hold() {
    const std::shared_ptr<const void> held = std::make_shared<int>();
    held_ = held;
    return held;
}

void EwmhDesktops::identify(const std::vector<std::size_t>& places) {
    auto names = readIdentified().names;
    auto now = uuids();
    names.resize(std::max(names.size(), places.size()));
    const auto uuidsBefore = now;
    const auto namesBefore = names;
    for (std::size_t i = 0; i < places.size(); ++i) {
        now[i] = uuidsBefore.at(places[i]);
        names[i] = namesBefore.at(places[i]);
    }
    while (!names.empty() && names.back().empty()) names.pop_back();
    root_.setUuids(now);
    root_.setNames(names);
}

void EwmhDesktops::expectNew(std::size_t index) {
    readIdentified();
    auto now = uuids();
    now.insert(now.begin() + static_cast<std::ptrdiff_t>(std::min(index, now.size())), newUuid());
    root_.setUuids(now);
}

void EwmhDesktops::forget(std::size_t index) {
    auto names = readIdentified().names;
    auto now = uuids();
    if (index < now.size()) now.erase(now.begin() + static_cast<std::ptrdiff_t>(index));
    if (index < names.size()) names.erase(names.begin() + static_cast<std::ptrdiff_t>(index));
    root_.setUuids(now);
    root_.setNames(names);
}

/// Of the last reading, and those beyond the last desktop.
std::vector<std::string> EwmhDesktops::uuids() const {
    std::vector<std::string> uuids;
    for (const RememberedDesktop& desktop : remembered_) uuids.push_back(desktop.uuid);
    return uuids;
}

EwmhState EwmhDesktops::readIdentified() {
    auto state = root_.read();
    const auto names = readableNames(state);
    const auto uuids = state.uuids ? completedUuids(*state.uuids, state.count, newUuid)
                                   : recalledUuids(remembered_, names, newUuid);
    if (state.uuids != uuids) root_.setUuids(uuids);

    remember(uuids, names);
    lastReading_ = readingOf(uuids, state);
    return state;
}

void EwmhDesktops::remember(const std::vector<std::string>& uuids, const std::vector<std::string>& names) {
    std::vector<RememberedDesktop> desktops;
    for (std::size_t i = 0; i < uuids.size(); ++i) {
        const auto known = std::ranges::find(remembered_, uuids[i], &RememberedDesktop::uuid);
        desktops.push_back(known != remembered_.end() ? *known : RememberedDesktop{uuids[i], {}});
        if (i < names.size()) desktops.back().shown = names[i];
    }
    remembered_ = std::move(desktops);
}

void EwmhDesktops::save() {
    if (remembered_ == saved_) return;
    saved_ = remembered_;
    file_.save(saved_);
}

} // namespace lumnara
