#pragma once

#include "app/overlay/Notices.h"
#include "app/overlay/OverlaySurface.h"
#include "app/settings/AppSettings.h"
#include "app/switching/SwitchAnnouncer.h"
#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/async/Timer.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/seams/Screens.h"
#include "core/switching/SwitchSettle.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// When a display changes to another desktop, puts a card with that desktop's name on its screen for a
/// moment. A link group is announced once and moves several displays; each that moved has its card, and none
/// that stayed. Main thread.
class SwitchOverlayController {
public:
    using SettledSignal = async::Signal<const Desktop&, const std::vector<SwitchSettle::Entry>&>;

    /// What the controller watches and tells. All outlive it.
    struct Session {
        async::Loop& loop;
        DesktopCatalog& catalog;
        AppSettings& settings;
        Screens* screens; ///< null where the session tells of none
        Notices& notices;
        SwitchAnnouncer& announcer;
        /// Where the displays of a link group stand some time after it was switched.
        SettledSignal& settled;
    };

    /// `mayShow` tells whether a card may stand on a screen now.
    SwitchOverlayController(const Session& session, OverlaySurfaceFactory makeSurface,
                            std::function<bool(const ScreenInfo&)> mayShow);
    SwitchOverlayController(const SwitchOverlayController&) = delete;
    SwitchOverlayController& operator=(const SwitchOverlayController&) = delete;

    /// Takes down the cards that may stand no more.
    void giveWay();

private:
    /// A screen's card.
    struct Panel {
        ScreenInfo screen;
        std::unique_ptr<OverlaySurface> surface;
        /// The display whose desktop the card names.
        DisplayID display;
        /// Takes the card down; null while it isn't up.
        std::unique_ptr<async::Delayed> end;
    };

    void showCard(const Desktop& current);
    void hide(Panel& panel);
    void hideAll();
    std::optional<ScreenInfo> screenOf(const DisplayID& display);
    Panel& panelOn(const ScreenInfo& screen);
    void reportUnsettled(const std::vector<SwitchSettle::Entry>& entries);
    std::string sentenceOn(const SwitchSettle::Entry& entry) const;

    Session session_;
    OverlaySurfaceFactory makeSurface_;
    std::function<bool(const ScreenInfo&)> mayShow_;
    std::vector<std::unique_ptr<Panel>> panels_;
    std::vector<async::Subscription> subscriptions_;
};

} // namespace lumnara
