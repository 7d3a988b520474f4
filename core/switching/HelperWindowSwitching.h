#pragma once

#include "core/switching/SpaceSwitching.h"

namespace lumnara {

/// An engine that keeps a window on each Space. Main thread.
class HelperWindowSwitching : public SpaceSwitching {
public:
    /// Makes sure that each Space has its window now, so that no switch has to wait for one.
    virtual void warm(const SpaceSnapshot& snapshot) = 0;
    /// Closes the windows of Spaces that are gone.
    virtual void pruneWindows(const SpaceSnapshot& keeping) = 0;
};

} // namespace lumnara
