#include "core/platform/ewmh/RememberedDesktop.h"

#include "core/text/Utf8.h"

#include <algorithm>
#include <set>

namespace lumnara {

namespace {

bool isKnownAs(const RememberedDesktop& desktop, const std::string& name) {
    if (name.empty()) return false;
    return desktop.shown == name ||
           (desktop.renamed && (desktop.renamed->ours == name || desktop.renamed->own == name));
}

/// FNV-1a with its 64-bit offset basis and prime.
std::uint64_t hashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text) hash = (hash ^ static_cast<std::uint8_t>(c)) * 0x100000001B3;
    return hash;
}

/// Gives remembered desktops to desktops, each at most once.
class Recall {
public:
    Recall(const std::vector<RememberedDesktop>& remembered, const std::vector<std::string>& names)
        : remembered_(remembered),
          names_(names),
          uuids_(names.size()),
          taken_(remembered.size()) {}

    void byPlaceAndName() {
        for (std::size_t i = 0; i < places(); ++i)
            if (isKnownAs(remembered_[i], names_[i])) give(i, i);
    }
    void byName() {
        for (std::size_t i = 0; i < names_.size(); ++i)
            for (std::size_t r = 0; r < remembered_.size() && uuids_[i].empty(); ++r)
                if (!taken_[r] && isKnownAs(remembered_[r], names_[i])) give(r, i);
    }
    void byPlace() {
        for (std::size_t i = 0; i < places(); ++i)
            if (uuids_[i].empty() && !taken_[i]) give(i, i);
    }
    std::vector<std::string> uuidsWithTail() && {
        for (std::size_t r = names_.size(); r < remembered_.size(); ++r)
            if (!taken_[r]) uuids_.push_back(remembered_[r].uuid);
        return std::move(uuids_);
    }

private:
    std::size_t places() const { return std::min(names_.size(), remembered_.size()); }
    void give(std::size_t from, std::size_t to) {
        uuids_[to] = remembered_[from].uuid;
        taken_[from] = true;
    }

    const std::vector<RememberedDesktop>& remembered_;
    const std::vector<std::string>& names_;
    std::vector<std::string> uuids_;
    std::vector<bool> taken_;
};

} // namespace

std::vector<std::string> splitNulList(std::string_view bytes) {
    std::vector<std::string> texts;
    while (!bytes.empty()) {
        const auto end = bytes.find('\0');
        texts.emplace_back(bytes.substr(0, end));
        bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    }
    return texts;
}

std::string joinNulList(const std::vector<std::string>& texts) {
    std::string bytes;
    for (const auto& text : texts) bytes.append(text).push_back('\0');
    return bytes;
}

std::vector<std::string> completedUuids(std::vector<std::string> uuids, std::size_t count,
                                        const UuidMint& mint) {
    std::set<std::string> known;
    if (uuids.size() < count) uuids.resize(count);
    for (auto& uuid : uuids) {
        if (uuid.empty() || !text::isValidUtf8(uuid) || known.contains(uuid)) uuid = mint();
        known.insert(uuid);
    }
    return uuids;
}

std::vector<std::string> recalledUuids(const std::vector<RememberedDesktop>& remembered,
                                       const std::vector<std::string>& names, const UuidMint& mint) {
    Recall recall(remembered, names);
    recall.byPlaceAndName();
    recall.byName();
    recall.byPlace();
    return completedUuids(std::move(recall).uuidsWithTail(), names.size(), mint);
}

std::vector<SpaceID> spaceIDsOf(const std::vector<std::string>& uuids) {
    std::vector<SpaceID> ids;
    std::set<std::uint64_t> used{0};
    for (const auto& uuid : uuids) {
        auto raw = hashOf(uuid);
        while (!used.insert(raw).second) ++raw;
        ids.push_back({raw});
    }
    return ids;
}

std::vector<std::string> namesToShow(const std::vector<std::string>& shown, std::size_t count,
                                     const std::map<std::string, std::string>& wanted,
                                     std::vector<RememberedDesktop>& desktops) {
    std::vector<std::string> names = shown;
    names.resize(std::max(names.size(), count));
    bool changed = false;
    for (std::size_t i = 0; i < std::min(count, desktops.size()); ++i) {
        const std::string now = names[i];
        auto& renamed = desktops[i].renamed;
        if (const auto name = wanted.find(desktops[i].uuid); name != wanted.end() && !name->second.empty()) {
            names[i] = name->second;
            // A name that isn't the one we set is the window manager's, or came from another program.
            const bool isOurs = renamed && (now == renamed->ours || now == names[i]);
            if (renamed || now != names[i]) renamed = {names[i], isOurs ? renamed->own : now};
        } else if (renamed) {
            if (now == renamed->ours) names[i] = renamed->own;
            renamed.reset();
        }
        changed |= names[i] != now;
    }
    // A list that needs no change is left to whoever wrote it; in ours, empty names at the end are none.
    if (!changed) return shown;
    while (!names.empty() && names.back().empty()) names.pop_back();
    return names;
}

} // namespace lumnara
