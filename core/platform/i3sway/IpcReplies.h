#pragma once

#include "core/model/Geometry.h"
#include "core/model/SpaceSnapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

// What i3 and sway answer, as far as we use it. Each reader throws IpcProtocolError for a text that is no
// JSON, lacks a field or has one of another type.

/// A workspace that exists, of GET_WORKSPACES.
struct IpcWorkspaceReply {
    /// The container: the same as long as the workspace lives. i3 gives the id of a dead one away again.
    std::int64_t id = 0;
    std::string name;
    std::string output;
    /// What its output leaves it; empty where it isn't told.
    Rect rect;
    bool visible = false;
    bool focused = false;
};
std::vector<IpcWorkspaceReply> parseWorkspaces(std::string_view json);

/// An output that shows something, of GET_OUTPUTS; inactive ones are left out.
struct IpcOutputReply {
    std::string name;
    Rect rect;
    // sway alone tells these; under i3 they are empty and 1.
    std::string make;
    std::string model;
    std::string serial;
    double scale = 1;
};
std::vector<IpcOutputReply> parseOutputs(std::string_view json);

/// The outcome of one of the commands of a RUN_COMMAND, or of a SUBSCRIBE.
struct IpcOutcome {
    bool success = false;
    /// The window manager's words; empty when it gave none.
    std::string error;
};
/// RUN_COMMAND answers for each of its commands, sway only up to the first that failed.
std::vector<IpcOutcome> parseOutcomes(std::string_view json);
IpcOutcome parseOutcome(std::string_view json);

/// Who has the keyboard.
struct IpcFocus {
    std::int64_t container = 0;
    /// By the Wayland id of the window or else its X11 class, with pid 0 where the window manager knows none;
    /// nothing when a workspace has the keyboard.
    std::optional<RunningApp> application;
};

struct IpcWorkspaceEvent {
    /// "init", "empty", "focus", "rename", "move", "reload" ...
    std::string change;
    /// The workspace it is about; 0 for none.
    std::int64_t id = 0;
    std::string name;
    /// Who in that workspace has the keyboard, or would have it there.
    IpcFocus focus;
};
IpcWorkspaceEvent parseWorkspaceEvent(std::string_view json);

/// The command of the key binding that ran.
std::string parseBindingEvent(std::string_view json);

struct IpcWindowEvent {
    /// "focus", "close", "move", "title" ...
    std::string change;
    /// The window it is about, as if it had the keyboard.
    IpcFocus window;
};
IpcWindowEvent parseWindowEvent(std::string_view json);

/// Who has the keyboard, of GET_TREE.
IpcFocus parseFocus(std::string_view json);

/// A workspace of GET_TREE with what stands on it: the containers that are moved as a whole, tiled and
/// floating ones.
struct IpcWorkspaceContents {
    std::int64_t id = 0;
    std::vector<std::int64_t> containers;
};
std::vector<IpcWorkspaceContents> parseContents(std::string_view json);

/// The text of the configuration file that GET_CONFIG answers with.
std::string parseConfig(std::string_view json);

} // namespace lumnara
