#pragma once

namespace lumnara {

/// The events that make the catalog read again. None carries data: the state is always read afresh.
enum class WorkspaceEvent { activeSpaceDidChange, didWake, screenParametersDidChange };

} // namespace lumnara
