#pragma once

#include "core/seams/DefaultsStore.h"

/// The place of the status item, which the system keeps among the user's settings.
namespace lumnara::MenuBarPlacement {

/// Stores a preferred position of 0.68 of the screen's width, far enough to the left to survive a crowded
/// bar, unless a place or a visibility is stored already. `screenWidth` in points.
void placeOnFirstStart(DefaultsStore& defaults, double screenWidth);

} // namespace lumnara::MenuBarPlacement
