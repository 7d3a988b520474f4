#pragma once

#include "core/async/Task.h"
#include "core/model/SpaceSnapshot.h"

namespace lumnara {

/// Asks the window manager to show a Space. Owned by Platform, called on the main thread.
class SpaceActivator {
public:
    virtual ~SpaceActivator() = default;

    /// Returns once the window manager has answered or has announced a change, or when the activator's
    /// patience (at most 0.3 s) has run out; it promises nothing about what the display shows. Creates the
    /// workspace again when the window manager has forgotten an empty one. Throws a Failure when the
    /// window manager can't be asked. The arguments must live until the task ends.
    virtual async::Task<> activate(const Space& target, const DisplayID& display) = 0;

    /// Gives the keyboard to a display, where displays have it apart. The rest as in activate().
    virtual async::Task<> focus(const DisplayID&) { co_return; }
};

} // namespace lumnara
