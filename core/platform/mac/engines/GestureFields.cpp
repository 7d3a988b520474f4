#include "core/platform/mac/engines/GestureFields.h"

namespace lumnara {

namespace {

constexpr int typeField = 55;
constexpr int hidTypeField = 110;
constexpr int motionField = 123;
constexpr int progressField = 124;
constexpr int velocityXField = 129;
constexpr int velocityYField = 130;
constexpr int phaseField = 132;

constexpr std::int64_t dockControl = 30;
constexpr std::int64_t dockSwipeHid = 23;
constexpr std::int64_t horizontal = 1;
/// The smallest positive 32-bit float, widened: some progress, and next to none.
constexpr double leastProgress = 0x1p-149;

} // namespace

GestureFields GestureFields::of(const SyntheticEvent& event) {
    const auto integer = [&](int field) { return event.integer(field).value_or(0); };
    const auto real = [&](int field) { return event.real(field).value_or(0); };
    return {integer(typeField),  integer(hidTypeField), integer(phaseField), integer(motionField),
            real(progressField), real(velocityXField),  real(velocityYField)};
}

SyntheticEvent GestureFields::dockSwipe(GesturePhase phase, double sign, double speed) {
    SyntheticEvent event;
    event.set(typeField, dockControl);
    event.set(hidTypeField, dockSwipeHid);
    event.set(phaseField, static_cast<std::int64_t>(phase));
    event.set(progressField, sign * leastProgress);
    event.set(motionField, horizontal);
    event.set(velocityXField, sign * speed);
    event.set(velocityYField, sign * speed);
    return event;
}

} // namespace lumnara
