#pragma once

#include "core/platform/sim/SimulatedMac.h"
#include "core/seams/Accessibility.h"

namespace lumnara {

/// The elements of a simulated Mac's programs; only the Dock has any worth reading. Main thread; the Mac
/// outlives it and its elements.
class SimulatedAccessibility : public Accessibility {
public:
    explicit SimulatedAccessibility(SimulatedMac& mac) : mac_(mac) {}

    bool isTrusted() override { return mac_.isTrusted; }
    std::shared_ptr<AccessibilityElement> application(std::int32_t pid) override;

private:
    SimulatedMac& mac_;
};

} // namespace lumnara
