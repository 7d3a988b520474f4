#pragma once

#include "core/model/SnapshotSpaceProvider.h"
#include "core/platform/mac/server/PropertyList.h"

#include <filesystem>
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

/// Serves a fixture, a file of that JSON. Throws SpaceKitError::malformed; errors of the file and of the JSON
/// pass through.
SnapshotSpaceProvider providerOfFixture(const std::filesystem::path& fixture, Date takenAt);

} // namespace lumnara
