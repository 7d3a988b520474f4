#pragma once

#include "core/platform/i3sway/RegisteredDesktop.h"
#include "core/platform/i3sway/WorkspaceNames.h"

#include <cstdint>
#include <string>
#include <vector>

/// How desktops are ordered where the window manager sorts its workspaces: those with a number at the
/// beginning of their names come first, by the number, and the others behind them.
///
/// So an order is kept by the numbers. The desktops of a display share the numbers they have, which are
/// handed out anew, and the first one is "1" afterwards as the first one was before. Those without a number
/// keep their names.
namespace lumnara::WorkspaceOrder {

inline constexpr std::uint64_t noNumber = ~std::uint64_t{0};
/// Numbers from here on are nobody's: i3 can hold this one, and workspaces bear it in passing.
inline constexpr std::uint64_t passingNumber = 1'000'000'000;

/// The number by which the window manager sorts a workspace, or noNumber.
std::uint64_t sortNumber(const std::string& name);

/// `name` with the number of `like` in place of its own; unchanged where one of the two has none.
std::string renumbered(const std::string& name, const std::string& like);

/// The order that comes nearest to this one, of all the Spaces of a display.
std::vector<SpaceID> keepable(const std::vector<const RegisteredDesktop*>& desired);

struct Step {
    std::string uuid;
    /// The name to give it; one in passing where the step is not its last.
    std::string name;

    bool operator==(const Step&) const = default;
};
/// The renames from the current order to a keepable one, one after the other: no name is given that another
/// desktop of the list still has. A workspace without a number only changes its place when it is sorted in
/// anew, which i3 does behind all others and sway in front of them.
std::vector<Step> steps(const std::vector<const RegisteredDesktop*>& current,
                        const std::vector<const RegisteredDesktop*>& order, IpcDialect dialect);

/// Whether a workspace has been left with a name that was meant in passing.
bool isPassing(const std::string& name);

} // namespace lumnara::WorkspaceOrder
