#pragma once

#include "core/catalog/Desktop.h"
#include "core/matching/Candidate.h"

#include <vector>

namespace lumnara {

/// What the matcher chooses from: one candidate a desktop, in the order given, with the desktop's name and
/// aliases, or its generated name, and the full-screen app's name as phrases.
std::vector<Candidate> candidates(const std::vector<Desktop>& desktops);

} // namespace lumnara
