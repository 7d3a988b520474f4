#pragma once

#include "core/model/PropertyList.h"
#include "core/model/SpaceSnapshot.h"

#include <string_view>

namespace lumnara {

/// Turns the window server's managed-display-spaces property list into a snapshot. The first bad display
/// ends the reading: nothing is partly returned.
class SnapshotParser {
public:
    /// Throws SpaceKitError::malformed.
    static SpaceSnapshot parse(const PropertyList& displays, Date takenAt);

    /// The same list as JSON text. Throws SpaceKitError::malformed; an error of the JSON passes through.
    static SpaceSnapshot parse(std::string_view json, Date takenAt);
};

} // namespace lumnara
