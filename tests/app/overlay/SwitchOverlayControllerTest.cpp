#include "app/overlay/SwitchOverlayController.h"

#include "tests/app/ScriptedSession.h"
#include "tests/support/MemoryDefaultsStore.h"

#include <gtest/gtest.h>
#include <limits>
#include <set>

namespace lumnara::testing {
namespace {

/// Writes down what it is told, as "A: Mail of Monitor A, linked" and "A: nothing", for all in one list.
class RecordingCard : public OverlaySurface {
public:
    explicit RecordingCard(Texts& events) : events_(events) {}

    void show(const OverlayCard& card, const ScreenInfo& screen) override {
        screen_ = screen.uuid;
        events_.push_back(screen_ + ": " + card.desktop.displayName() +
                          (card.displayName.empty() ? "" : " of " + card.displayName) +
                          (card.desktop.isLinked() ? ", linked" : ""));
    }
    void hide() override { events_.push_back(screen_ + ": nothing"); }

private:
    Texts& events_;
    std::string screen_;
};

struct Overlay {
    explicit Overlay(std::vector<DisplaySpaces> displays)
        : session(std::move(displays)),
          controller(
              {session.loop, session.start().catalog(), settings, session.screens, session.state().notices(),
               session.state().announcer(), settled},
              [this] { return std::make_unique<RecordingCard>(shown); },
              [this](const ScreenInfo& screen) { return !covered.contains(screen.uuid); }) {}

    Texts take() { return std::exchange(shown, {}); }
    /// What happens within so many seconds.
    Texts during(double seconds) {
        session.loop.advance(seconds);
        return take();
    }

    ScriptedSession session;
    MemoryDefaultsStore defaults;
    AppSettings settings{defaults};
    SwitchOverlayController::SettledSignal settled;
    /// Screens on which no card may stand.
    std::set<std::string> covered;
    Texts shown;
    SwitchOverlayController controller;
};

TEST(SwitchOverlayController, showsEachChangeForAMoment) {
    Overlay overlay(twoDisplays());
    overlay.session.catalog().rename("A-2", "Mail");
    overlay.session.tell();
    EXPECT_EQ(overlay.during(2), Texts{}) << "nothing was switched";

    overlay.session.userShows(2);
    EXPECT_EQ(overlay.during(0.9), Texts{"A: Mail of Monitor A"});
    EXPECT_EQ(overlay.during(0.2), Texts{"A: nothing"});
    EXPECT_EQ(overlay.during(9), Texts{});

    overlay.session.userShows(3);
    overlay.session.loop.advance(0.6);
    overlay.session.userShows(12);
    overlay.session.userShows(1);
    EXPECT_EQ(overlay.take(),
              (Texts{"A: Desktop 3 of Monitor A", "B: Desktop 2 of Monitor B", "A: Desktop 1 of Monitor A"}));
    EXPECT_EQ(overlay.during(0.9), Texts{}) << "the time starts anew";
    EXPECT_EQ(overlay.during(0.2), (Texts{"B: nothing", "A: nothing"}));

    Overlay single({displayOf("A", 2, 1)});
    single.session.userShows(2);
    EXPECT_EQ(single.take(), Texts{"A: Desktop 2"}) << "there is no other display";
}

TEST(SwitchOverlayController, obeysTheSettingsAsTheyAre) {
    Overlay overlay(twoDisplays());
    overlay.settings.switchOverlayDuration.set(3);
    overlay.session.userShows(2);
    overlay.session.userShows(12);
    overlay.take();
    overlay.settings.switchOverlay.set(false);
    EXPECT_EQ(overlay.take(), (Texts{"A: nothing", "B: nothing"}));
    overlay.session.userShows(1);
    EXPECT_EQ(overlay.during(9), Texts{});
    overlay.settings.switchOverlay.set(true);
    overlay.session.userShows(2);
    EXPECT_EQ(overlay.during(2.9), Texts{"A: Desktop 2 of Monitor A"});
    EXPECT_EQ(overlay.during(0.2), Texts{"A: nothing"});

    constexpr double infinity = std::numeric_limits<double>::infinity();
    std::uint64_t next = 1;
    for (const double none : {0.0, -1.0, infinity, std::numeric_limits<double>::quiet_NaN()}) {
        overlay.settings.switchOverlayDuration.set(none);
        overlay.session.userShows(next);
        EXPECT_EQ(overlay.during(9), Texts{}) << none;
        next = 3 - next;
    }
}

TEST(SwitchOverlayController, staysAwayFromScreensThatAreCoveredOrGone) {
    Overlay overlay(twoDisplays());
    overlay.session.userShows(2);
    overlay.session.userShows(12);
    overlay.take();
    overlay.covered = {"A"};
    overlay.controller.giveWay();
    EXPECT_EQ(overlay.take(), Texts{"A: nothing"});
    overlay.session.userShows(3);
    overlay.session.userShows(11);
    EXPECT_EQ(overlay.during(2), (Texts{"B: Desktop 1 of Monitor B", "B: nothing"}));
    overlay.covered.clear();
    overlay.controller.giveWay();

    overlay.session.screens->list[0].uuid = "a";
    overlay.session.screens->list.pop_back();
    overlay.session.userShows(12);
    overlay.session.userShows(1);
    EXPECT_EQ(overlay.take(), Texts{"a: Desktop 1 of Monitor A"}) << "the one is gone, the other spelt anew";
}

TEST(SwitchOverlayController, standsUnderThePointerInASharedArrangement) {
    Overlay overlay({displayOf("Main", 3, 1)});
    overlay.session.screens->list = {{"L", "L", "Left", Rect{0, 0, 1280, 800}, 1},
                                     {"R", "R", "Right", Rect{1280, 0, 1280, 800}, 1}};
    overlay.session.screens->under = "r";
    overlay.session.userShows(2);
    EXPECT_EQ(overlay.take(), Texts{"R: Desktop 2"});
    overlay.session.screens->under = "L";
    overlay.session.userShows(3);
    EXPECT_EQ(overlay.take(), (Texts{"R: nothing", "L: Desktop 3"})) << "that one is no longer true";
    overlay.session.screens->under.reset();
    overlay.session.userShows(1);
    EXPECT_EQ(overlay.take(), Texts{"L: nothing"}) << "nobody knows where the user is";
}

TEST(SwitchOverlayController, tellsOfEachScreenThatALinkGroupMoved) {
    Overlay overlay({displayOf("A", 3, 1), displayOf("B", 2, 11), displayOf("C", 2, 21)});
    DesktopCatalog& catalog = overlay.session.catalog();
    catalog.setLinkMode(DisplayLinkMode::linked);
    catalog.rename("A-2", "Mail");
    catalog.link("A-2", "B-2");
    const std::string onA = "A: Mail of Monitor A, linked";
    const std::string onB = "B: Mail of Monitor B, linked";
    overlay.session.provider->show(SpaceID{2});
    overlay.session.provider->show(SpaceID{12});
    overlay.session.tell();
    EXPECT_EQ(overlay.during(2), (Texts{onA, onB, "A: nothing", "B: nothing"})) << "in one reading";

    overlay.session.userShows(1);
    overlay.session.userShows(11);
    overlay.during(2);
    overlay.session.userShows(12);
    EXPECT_EQ(overlay.during(1.5), (Texts{onB, "B: nothing"}));
    overlay.session.userShows(2);
    EXPECT_EQ(overlay.during(2), (Texts{onA, "A: nothing"})) << "late, and the other stood there already";

    // An edit changes what a desktop is called or belongs to, and not what a display shows.
    catalog.link("C-1", "A-2");
    catalog.rename("C-1", "Post");
    overlay.session.tell();
    overlay.session.provider->current.displays.pop_back();
    overlay.session.tell();
    EXPECT_EQ(overlay.during(2), Texts{});
}

TEST(SwitchOverlayController, tellsWhichDisplaysDidNotStay) {
    Overlay overlay(twoDisplays());
    overlay.session.catalog().rename("A-1", "Mail");
    const Desktop asked = overlay.session.desktop("A-2");
    const DisplayID a{"A"}, b{"b"}, gone{"Gone"};
    overlay.settled.emit(asked, {{a, SpaceID{2}, SpaceID{2}}, {b, SpaceID{12}, SpaceID{12}}});
    overlay.settled.emit(asked, {{gone, SpaceID{31}, std::nullopt}});
    EXPECT_TRUE(overlay.session.notices.empty());

    overlay.settled.emit(asked, {{a, SpaceID{2}, SpaceID{1}}, {b, SpaceID{12}, SpaceID{12}}});
    overlay.settled.emit(asked, {{b, SpaceID{12}, SpaceID{11}}});
    overlay.settled.emit(asked, {{b, SpaceID{12}, std::nullopt}, {a, SpaceID{2}, SpaceID{1}}});
    EXPECT_EQ(overlay.session.notices,
              (std::vector<Notice>{
                  {"Monitor A went back to Mail.", 2.2},
                  {"Monitor B did not stay there.", 2.2},
                  {"Monitor B did not stay there. Monitor A went back to Mail.", 2.2},
              }));
}

} // namespace
} // namespace lumnara::testing
