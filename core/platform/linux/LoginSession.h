#pragma once

#include "core/platform/linux/Bus.h"
#include "core/seams/SessionProbe.h"

#include <memory>
#include <vector>

namespace lumnara {

/// What the login manager (logind's LockedHint and Active) and the desktops' screen savers (GetActive) say of
/// the session: locked when any of them says so. They are asked and then listened to from the loop, so a look
/// never waits for them. Before the first answer, and where there is nobody to ask, the screen isn't locked
/// and the session is the one that the user sees; a bare screen locker that tells nobody isn't noticed. Main
/// thread.
class LoginSession : public SessionProbe {
public:
    LoginSession(async::Loop& loop, const Environment& environment);
    ~LoginSession() override;

    bool isScreenLocked() override;
    bool isOnConsole() override;

private:
    class LoginManager;
    class ScreenSaver;

    std::shared_ptr<Bus> system_;
    std::shared_ptr<Bus> session_;
    std::unique_ptr<LoginManager> loginManager_;
    std::vector<std::unique_ptr<ScreenSaver>> screenSavers_;
};

} // namespace lumnara
