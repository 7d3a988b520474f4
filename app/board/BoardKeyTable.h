#pragma once

#include "app/board/KeyPress.h"
#include "core/catalog/Desktop.h"

#include <optional>

namespace lumnara {

class QuickSwitcherModel;

/// What is left to do after a key was applied to a model.
struct KeyEffect {
    enum class Kind {
        fallsThrough, ///< the table has no use for the key; the view may
        done,
        closesBoard,
        switches, ///< to `desktop`
        opensMenu ///< of the selected tile
    };

    Kind kind = Kind::fallsThrough;
    std::optional<Desktop> desktop;

    bool operator==(const KeyEffect&) const = default;
};

/// The Board's keys, applied to the model of the surface that holds the keyboard.
KeyEffect applyKey(const KeyPress& press, QuickSwitcherModel& model);

} // namespace lumnara
