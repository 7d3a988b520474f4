#pragma once

#include <set>
#include <string>
#include <string_view>

namespace lumnara {

// How desktops are called by a window manager that knows them by name.

/// Whose rules hold. The two share a protocol, not the reading of a command.
enum class IpcDialect { i3, sway };

/// The key under which two names are one workspace: i3 and sway compare them without (ASCII) case.
std::string workspaceKey(std::string_view name);

/// The digits that a workspace's name begins with, by which "workspace number" finds it; empty for none.
std::string_view leadingDigits(std::string_view name);

/// The workspace name that shows a user's title: the title itself, behind the number of the workspace's own
/// name ("1: Mail"), so that the user's key bindings by number and the order stay. What the window manager
/// can't take is taken out; the own name when nothing is left. A name whose key is in `taken`, or that the
/// window manager reads as a direction ("next"), gets a blank and the first free number from 2.
std::string titledWorkspace(IpcDialect dialect, std::string_view ownName, std::string_view title,
                            const std::set<std::string>& taken);

/// The name as one argument of a command.
std::string quoted(IpcDialect dialect, std::string_view name);

} // namespace lumnara
