#include "core/platform/x11/EwmhDesktops.h"

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
    if (const auto current = root_.readCurrentAlone(); current && *current < lastReading_.desktops.size()) {
        lastReading_.current = *current;
        return lastReading_;
    }
    readIdentified();
    save();
    return lastReading_;
}

bool EwmhDesktops::showNames(const std::map<std::string, std::string>& wanted) {
    const auto state = readIdentified();
    const auto names = namesToShow(state.names, state.count, wanted, remembered_);
    const bool changed = names != state.names;
    // First the file: the window manager's own names would be lost with a crash in between.
    save();
    if (changed) root_.setNames(names);
    return changed;
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
