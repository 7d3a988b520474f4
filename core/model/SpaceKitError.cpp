#include "core/model/SpaceKitError.h"

#include <utility>

namespace lumnara {

SpaceKitError::SpaceKitError(Case which, std::string sentence, std::string detail)
    : Failure(std::move(sentence)),
      which_(which),
      detail_(std::move(detail)) {}

SpaceKitError SpaceKitError::malformed(std::string detail) {
    std::string sentence = "Unexpected desktop data from macOS: " + detail + ".";
    return {Case::malformed, std::move(sentence), std::move(detail)};
}

SpaceKitError SpaceKitError::privateAPIUnavailable() {
    return {
        Case::privateAPIUnavailable, "This macOS build does not expose the desktop APIs Lumnara needs.", {}};
}

SpaceKitError SpaceKitError::enumerationFailed() {
    return {Case::enumerationFailed, "Could not read the list of desktops.", {}};
}

} // namespace lumnara
