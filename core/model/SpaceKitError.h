#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// The layout of displays and Spaces can't be read.
class SpaceKitError : public FailureOf<SpaceKitError, std::string> {
public:
    enum class Case { malformed, privateAPIUnavailable, enumerationFailed };
    static constexpr Sentence<Case> sentences[] = {
        {Case::malformed, "Unexpected desktop data from macOS: {}."},
        {Case::privateAPIUnavailable, "This macOS build does not expose the desktop APIs Lumnara needs."},
        {Case::enumerationFailed, "Could not read the list of desktops."},
    };

    static SpaceKitError malformed(std::string detail) {
        return SpaceKitError(Case::malformed, std::move(detail));
    }
    static SpaceKitError privateAPIUnavailable() { return SpaceKitError(Case::privateAPIUnavailable); }
    static SpaceKitError enumerationFailed() { return SpaceKitError(Case::enumerationFailed); }

    /// What is wrong with the data, for `malformed`.
    const std::string& detail() const { return payload<0>(); }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
