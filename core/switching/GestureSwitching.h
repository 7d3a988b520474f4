#pragma once

#include "core/switching/SpaceSwitching.h"

namespace lumnara {

/// An engine that swipes. Main thread.
class GestureSwitching : public SpaceSwitching {
public:
    /// The gesture's velocity for each step of a jump.
    virtual void setVelocity(double velocity) = 0;
    /// Whether the pointer is put back when it was taken to another display.
    virtual void setRestoresCursor(bool restores) = 0;
};

} // namespace lumnara
