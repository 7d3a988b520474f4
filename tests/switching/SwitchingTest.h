#pragma once

#include "core/async/Task.h"
#include "core/async/TestLoop.h"
#include "core/switching/SpaceSwitching.h"
#include "core/switching/SwitchError.h"
#include "core/switching/SwitchVerifier.h"
#include "tests/model/Layouts.h"
#include "tests/support/Ended.h"
#include "tests/support/ScriptedProvider.h"

#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A desktop with the uuid "U<id>"; 1 has none.
inline Space desktop(std::uint64_t id) { return makeSpace(id, id == 1 ? "" : "U" + std::to_string(id)); }

/// "D1" with the desktops 1, 2 and 3, and "D2" with 4 and 5; 1 and 4 are shown.
inline SpaceSnapshot twoDisplays(Date takenAt = {}) {
    return {{makeDisplay("D1", {desktop(1), desktop(2), desktop(3)}),
             makeDisplay("D2", {desktop(4), desktop(5)})},
            takenAt};
}

/// How a switch ended.
struct Outcome : Ended<SwitchResult> {
    std::optional<SwitchError> switchError() const { return errorAs<SwitchError>(); }
    bool failedWith(SwitchError::Case which) const { return switchError() == SwitchError(which); }
};

/// Runs a switch to its end.
inline Outcome finish(async::TestLoop& loop, async::Task<SwitchResult> task) {
    return {finish<SwitchResult>(loop, std::move(task))};
}

} // namespace lumnara::testing
