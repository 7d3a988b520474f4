#pragma once

#include "core/model/PropertyList.h"

#include <optional>

namespace lumnara {

/// The user's login session. Owned by Platform, called on the main thread; a session that tells nothing of
/// itself has no SessionProbe.
class SessionProbe {
public:
    virtual ~SessionProbe() = default;

    /// The session's dictionary, read afresh, with "CGSSessionScreenIsLocked" and "kCGSSessionOnConsoleKey";
    /// nothing when there is no session. Any key may be missing.
    virtual std::optional<PropertyDictionary> currentDictionary() = 0;
};

} // namespace lumnara
