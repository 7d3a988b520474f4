#include "core/arranging/DesktopRemoveError.h"

#include "core/arranging/MissionControlSentences.h"

namespace lumnara {

namespace {

std::string removeErrorSentence(DesktopRemoveError::Case which) {
    using Case = DesktopRemoveError::Case;
    switch (which) {
    case Case::notAUserDesktop:
        return "Only a regular desktop can be deleted. A fullscreen app leaves fullscreen from its own "
               "window.";
    case Case::lastOnDisplay: return "A display keeps at least one desktop.";
    case Case::notOnDisplay: return MissionControlSentences::desktopGone;
    }
    return {};
}

} // namespace

DesktopRemoveError::DesktopRemoveError(Case which) : Failure(removeErrorSentence(which)), which_(which) {}

} // namespace lumnara
