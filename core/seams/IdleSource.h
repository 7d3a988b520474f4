#pragma once

#include <optional>

namespace lumnara {

/// When the user last touched a key, a button or the pointer. Owned by Platform, called on the main thread; a
/// session that can't tell has no IdleSource.
class IdleSource {
public:
    virtual ~IdleSource() = default;

    /// Seconds since the last input of any kind, to the second at least; nothing while it can't be told.
    virtual std::optional<double> secondsSinceInput() = 0;
};

} // namespace lumnara
