#pragma once

#include "core/switching/SwitchError.h"

#include <optional>

namespace lumnara {

/// Why scripted work in Mission Control did not begin; nothing has been changed.
class SpaceReorderError : public Failure {
public:
    enum class Case {
        session, ///< the session forbids it; reason() says why
        accessibilityNotTrusted,
        mruSpacesOn,
        missionControlOpen,
        displayNotAttached,
        displayNotInSnapshot,
        missionControlDidNotOpen,
        spacesBarNotFound
    };

    /// Any case but session, which carries its reason.
    explicit SpaceReorderError(Case which);
    static SpaceReorderError session(SwitchError reason);

    Case which() const { return which_; }
    /// Of session.
    const std::optional<SwitchError>& reason() const { return reason_; }
    bool operator==(const SpaceReorderError& other) const {
        return which_ == other.which_ && reason_ == other.reason_;
    }

private:
    SpaceReorderError(Case which, std::optional<SwitchError> reason);

    Case which_;
    std::optional<SwitchError> reason_;
};

} // namespace lumnara
