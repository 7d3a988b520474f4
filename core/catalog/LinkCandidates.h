#pragma once

#include "core/catalog/Desktop.h"
#include "core/names/NameStoreFile.h"

#include <vector>

namespace lumnara {

/// Two desktops of different displays that bear the same name.
struct LinkCandidate {
    Desktop first;
    Desktop second;

    bool operator==(const LinkCandidate&) const = default;
};

/// The desktops that could be linked as they stand, those of earlier displays first. A desktop is in one
/// pair at most, and in none when it belongs to a link group of the file.
std::vector<LinkCandidate> linkCandidates(const std::vector<DisplayDesktops>& displays,
                                          const NameStoreFile& file);

} // namespace lumnara
