#pragma once

#include "core/platform/mac/server/PropertyList.h"
#include "core/seams/SessionProbe.h"

#include <optional>
#include <string_view>

namespace lumnara {

/// The login session of a Mac, as its dictionary tells it.
class MacSession : public SessionProbe {
public:
    /// The session's dictionary, read afresh; nothing when there is no session. Any key may be missing.
    virtual std::optional<PropertyDictionary> currentDictionary() = 0;

    /// By "CGSSessionScreenIsLocked"; anything but a true boolean is false.
    bool isScreenLocked() override { return flag("CGSSessionScreenIsLocked").value_or(false); }
    /// By "kCGSSessionOnConsoleKey"; anything but a false boolean is true.
    bool isOnConsole() override { return flag("kCGSSessionOnConsoleKey").value_or(true); }

private:
    std::optional<bool> flag(std::string_view key);
};

} // namespace lumnara
