#pragma once

#include <string>

namespace lumnara::testing {

/// A line a step: what was done in Mission Control when, what the surface was told, and what came of it.
struct ArrangeTranscript {
    std::string text;
    /// How long it took on the Mac's own clock.
    double seconds = 0;
};

/// So many desktops are turned around. Throws when they don't end that way.
ArrangeTranscript reorderTranscript(int desktops);
/// The user presses Escape while the first of three desktops goes. Throws when one went unasked.
ArrangeTranscript stoppedRemovalTranscript();

} // namespace lumnara::testing
