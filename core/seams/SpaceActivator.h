#pragma once

#include "core/async/TaskFwd.h"
#include "core/model/SpaceSnapshot.h"

#include <memory>
#include <optional>

namespace lumnara {

/// Asks the window manager to show a Space. Owned by Platform, called on the main thread.
class SpaceActivator {
public:
    virtual ~SpaceActivator() = default;

    /// Returns once the window manager has answered or has announced a change, or when the activator's
    /// patience (at most 0.3 s) has run out; it promises nothing about what the display shows. Yields the
    /// Space that the display showed then where that was read along with the answer, else nothing. Creates
    /// the workspace again when the window manager has forgotten an empty one. Throws a Failure when the
    /// window manager can't be asked. The arguments must live until the task ends.
    virtual async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) = 0;

    /// While the result lives, and until the next call, activations leave the keyboard on this display, where
    /// displays have it apart.
    virtual std::shared_ptr<const DisplayID> keepFocusOn(const DisplayID&) { return nullptr; }
};

} // namespace lumnara
