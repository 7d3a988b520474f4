#pragma once

#include "core/async/TaskFwd.h"
#include "core/model/SpaceSnapshot.h"
#include "core/switching/SwitchResult.h"

namespace lumnara {

/// A way to make a display show a Space. Main thread.
class SpaceSwitching {
public:
    virtual ~SpaceSwitching() = default;

    virtual EngineKind kind() const = 0;

    /// Ends with a landing that was verified (`landed` is true), or throws SwitchError or a foreign error.
    /// `snapshot` was taken for this switch. The engine and the arguments must live until the task ends.
    virtual async::Task<SwitchResult> switchTo(const Space& target, const DisplayID& display,
                                               const SpaceSnapshot& snapshot) = 0;
};

} // namespace lumnara
