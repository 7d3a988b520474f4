#pragma once

#include "core/arranging/RemoveOutcome.h"
#include "core/arranging/ReorderOutcome.h"
#include "core/async/TaskFwd.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Reorders, removes and creates the desktops of one display, and tells what really came of it. Each call
/// throws a Failure when nothing was begun. Owned by Platform, absent where desktops can't be arranged;
/// called on the main thread, one call at a time, and must outlive its tasks.
class DesktopArranger {
public:
    virtual ~DesktopArranger() = default;

    /// Is told what goes on, as a status sentence.
    std::function<void(const std::string&)> onProgress;

    /// How many desktops a display can hold; nothing where there is no such limit.
    virtual std::optional<int> desktopsPerDisplay() const = 0;

    /// Brings the display's Spaces into the desired order, in which unknown and repeated ids are passed over
    /// and missing ones go to the end.
    virtual async::Task<ReorderOutcome> reorder(DisplayID display, std::vector<SpaceID> desired) = 0;
    /// Removes user desktops of the display, which keeps at least one.
    virtual async::Task<RemoveOutcome> remove(std::vector<SpaceID> ids, DisplayID display) = 0;
    /// Adds a desktop. Gives the user desktops that the display has and no display had before: none when
    /// nothing came of it, several when others were added meanwhile, so that it can't be told which is which.
    virtual async::Task<std::vector<SpaceID>> create(DisplayID display) = 0;
};

} // namespace lumnara
