#pragma once

#include "core/model/SpaceSnapshot.h"

#include <optional>

namespace lumnara {

/// Where and how a match is asked for.
struct MatchContext {
    enum class Mode { voice, filter };

    /// The display under the mouse pointer.
    std::optional<DisplayID> cursorDisplay;
    /// The display with the active menu bar.
    std::optional<DisplayID> menuBarDisplay;
    /// Speech goes on; false for a final transcript.
    bool isPartial = false;
    Mode mode = Mode::voice;

    bool operator==(const MatchContext&) const = default;
};

} // namespace lumnara
