#pragma once

namespace lumnara {

/// The user's login session. Owned by Platform, called on the main thread, read afresh at each call; a
/// session that tells nothing of itself has no SessionProbe.
class SessionProbe {
public:
    virtual ~SessionProbe() = default;

    /// Only when the session says so.
    virtual bool isScreenLocked() = 0;
    /// Whether the user sees this session: unless it says otherwise.
    virtual bool isOnConsole() = 0;
};

} // namespace lumnara
