#pragma once

#include "core/arranging/MissionControlSentences.h"
#include "core/base/Failure.h"

namespace lumnara {

/// Why the removal of desktops did not begin; nothing has been changed.
class DesktopRemoveError : public FailureOf<DesktopRemoveError> {
public:
    enum class Case { notAUserDesktop, lastOnDisplay, notOnDisplay };
    static constexpr Sentence<Case> sentences[] = {
        {Case::notAUserDesktop,
         "Only a regular desktop can be deleted. A fullscreen app leaves fullscreen from its own window."},
        {Case::lastOnDisplay, "A display keeps at least one desktop."},
        {Case::notOnDisplay, MissionControlSentences::desktopGone},
    };

    explicit DesktopRemoveError(Case which) : FailureOf(which) {}
};

} // namespace lumnara
