#pragma once

#include "core/seams/WindowSource.h"

#include <map>
#include <set>
#include <vector>

namespace lumnara::WindowIndex {

/// The windows of each wanted Space that has any, front first, without palettes and slivers. One that is on
/// several of the Spaces is listed under each.
std::map<SpaceID, std::vector<DesktopWindow>> windows(const std::set<SpaceID>& onSpaces,
                                                      WindowSource& source);

} // namespace lumnara::WindowIndex
