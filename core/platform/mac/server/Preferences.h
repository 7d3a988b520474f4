#pragma once

#include "core/platform/mac/server/PropertyList.h"

#include <optional>
#include <string_view>

namespace lumnara {

/// What the user has set in other programs. Main thread, read afresh at each
/// call; a session that keeps no such settings has no Preferences.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// The value of a key ("mru-spaces") of an application ("com.apple.dock"), of any type; nothing when it
    /// was never set.
    virtual std::optional<PropertyValue> value(std::string_view key, std::string_view application) = 0;
};

} // namespace lumnara
