#include "tests/app/ScriptedSession.h"

#include "core/base/Files.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

/// What the two callbacks told: "to <key>" for a switch, "on <key>" for the focused desktop.
class Listener {
public:
    explicit Listener(AppState& state)
        : switched_(state.announcer().desktopSwitched.subscribe(
              [this](const Desktop& d, const auto&) { told.push_back("to " + d.key); })),
          current_(state.currentDesktopChanged.subscribe([this](const std::optional<Desktop>& d) {
              told.push_back("on " + (d ? d->key : std::string("nothing")));
          })) {}

    Texts take() { return std::exchange(told, {}); }

    Texts told;

private:
    async::Subscription switched_;
    async::Subscription current_;
};

TEST(AppState, announcesAChangeOnceAndOnlyAChange) {
    ScriptedSession session(twoDisplays());
    Listener listener(session.start());
    session.tell();
    EXPECT_EQ(listener.take(), (Texts{"on A-1"}))
        << "the first reading was no change, and neither is this one";
    session.userShows(2);
    EXPECT_EQ(listener.take(), (Texts{"to A-2", "on A-2"}));
    session.provider->menuBar = DisplayID{"B"};
    session.userShows(12);
    EXPECT_EQ(listener.take(), (Texts{"to B-2", "on B-2"}));

    session.provider->current.displays.push_back(displayOf("C", 2, 21));
    session.tell(WorkspaceEvent::screenParametersDidChange);
    EXPECT_EQ(listener.take(), (Texts{"on B-2"})) << "a display that appears switches nothing";
    session.provider->show(SpaceID{1});
    session.userShows(22);
    EXPECT_EQ(listener.take(), (Texts{"to A-1", "to C-2", "on B-2"})) << "in display order";

    session.provider->failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    session.userShows(2);
    EXPECT_EQ(listener.take(), Texts{}) << "nothing was read";
    session.provider->failure = nullptr;
    session.tell();
    EXPECT_EQ(listener.take(), (Texts{"to A-2", "on B-2"}));
}

TEST(AppState, aChangePassesItsStationsInOrder) {
    ScriptedSession session(twoDisplays());
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    session.catalog().rename("A-2", "Mail");
    session.catalog().rename("B-1", "Chat");
    session.catalog().link("A-3", "B-2");
    Texts stations;
    const int readBefore = session.provider->readings;
    const std::size_t publishedBefore = session.publisher->published.size();
    const auto displays = session.catalog().displays.subscribe([&](const auto&) {
        stations.push_back(session.provider->readings == readBefore + 1 ? "read, displays" : "displays");
    });
    const auto links = session.catalog().activeLinkCount.subscribe(
        [&](int count) { stations.push_back("links " + std::to_string(count)); });
    const auto orphans = session.catalog().orphans.subscribe(
        [&](const auto& gone) { stations.push_back("orphans " + std::to_string(gone.size())); });
    const auto switched =
        session.state().announcer().desktopSwitched.subscribe([&](const Desktop& desktop, const auto&) {
            const bool isTold = session.publisher->published.size() == publishedBefore + 1;
            const bool isHistory = session.state().switcher().history.previous("A") == "A-1";
            stations.push_back(std::string(isHistory ? "history, " : "") + (isTold ? "names, " : "") + "to " +
                               desktop.displayName());
        });
    const auto current = session.state().currentDesktopChanged.subscribe(
        [&](const std::optional<Desktop>& desktop) { stations.push_back("on " + desktop->displayName()); });
    session.provider->current.displays.pop_back();
    session.userShows(2);
    EXPECT_EQ(stations,
              (Texts{"read, displays", "links 0", "orphans 1", "history, names, to Mail", "on Mail"}));
}

TEST(AppState, aLinkGroupIsAnnouncedOnceHoweverItArrives) {
    ScriptedSession session(twoDisplays());
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    ASSERT_TRUE(session.catalog().link("A-2", "B-2"));
    const std::string group = session.desktop("A-2").key;
    Listener listener(session.state());
    const auto told = [&] {
        Texts announced = listener.take();
        std::erase_if(announced, [](const std::string& each) { return each.starts_with("on "); });
        return announced;
    };

    session.provider->show(SpaceID{2});
    session.userShows(12);
    EXPECT_EQ(told(), Texts{"to " + group}) << "both displays in one reading";
    session.provider->show(SpaceID{1});
    session.userShows(11);
    EXPECT_EQ(told(), (Texts{"to A-1", "to B-1"}));
    session.userShows(12);
    EXPECT_EQ(told(), Texts{"to " + group});
    session.userShows(2);
    EXPECT_EQ(told(), Texts{}) << "the second display follows in a reading of its own";
    session.userShows(1);
    session.userShows(2);
    EXPECT_EQ(told(), (Texts{"to A-1", "to " + group})) << "away and back";

    // Both go there by one request, from any member's key or the group's.
    session.provider->show(SpaceID{1});
    session.userShows(11);
    session.state().switchTo(session.desktop("B-2"));
    session.loop.advance(1);
    EXPECT_EQ(session.activator->asked, (std::vector{SpaceID{2}, SpaceID{12}}));

    session.settings.displayLinkMode.set(DisplayLinkMode::independent);
    EXPECT_EQ(session.desktop("B-2").key, "B-2") << "the setting holds at once";
    session.userShows(11);
    session.state().switchTo(session.desktop("B-2"));
    session.loop.advance(1);
    EXPECT_EQ(session.activator->asked.back(), SpaceID{12});
    EXPECT_EQ(session.activator->asked.size(), 3u);
}

TEST(AppState, aListenerMayEditTheDesktops) {
    ScriptedSession session(twoDisplays());
    session.start();
    const auto naming =
        session.state().announcer().desktopSwitched.subscribe([&](const Desktop& desktop, const auto&) {
            session.catalog().rename(desktop.key, "Visited " + desktop.display.uuid);
        });
    session.provider->show(SpaceID{2});
    session.userShows(12);
    EXPECT_EQ(session.publisher->lastNames(), (Texts{"Visited A", "Visited B"}));
}

TEST(AppState, tellsTheWindowManagerTheNames) {
    ScriptedSession session(twoDisplays());
    session.start();
    EXPECT_EQ(session.publisher->lastNames(), Texts{});
    session.catalog().rename("B-1", "Mail");
    EXPECT_EQ(session.publisher->lastNames(), (Texts{"Mail"})) << "at once";
    EXPECT_EQ(session.publisher->published.back().front(),
              (PublishedDesktop{"B-1", SpaceID{11}, DisplayID{"B"}, "Mail"}));
    session.catalog().setDimmed("A-3", true);
    EXPECT_EQ(session.publisher->lastNames(), (Texts{"", "Mail"})) << "a record without a name";

    session.provider->current.displays.pop_back();
    session.tell();
    EXPECT_EQ(session.publisher->lastNames(), (Texts{""})) << "only what is live";
    session.provider->current.displays.push_back(displayOf("B", 2, 31));
    session.tell();
    EXPECT_EQ(session.publisher->published.back().back(),
              (PublishedDesktop{"B-1", SpaceID{31}, DisplayID{"B"}, "Mail"}))
        << "the Space has another id now";
    session.catalog().forget("B-1");
    EXPECT_EQ(session.publisher->lastNames(), (Texts{""}));

    const std::size_t before = session.publisher->published.size();
    session.provider->failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    session.tell();
    EXPECT_EQ(session.publisher->published.size(), before);
    session.provider->failure = nullptr;
    session.tell();
    EXPECT_GT(session.publisher->published.size(), before)
        << "the window manager may have come back nameless";
}

TEST(AppState, switchesAndKeepsSilentWhereNothingFailed) {
    ScriptedSession session(twoDisplays());
    session.start();
    session.state().switchTo(session.desktop("A-2"));
    EXPECT_TRUE(session.activator->asked.empty()) << "never inside the caller";
    session.loop.advance(1);
    EXPECT_EQ(session.activator->asked, (std::vector{SpaceID{2}}));
    EXPECT_GT(session.probes, 0) << "the landing was looked for by the quick probe";
    session.tell();
    EXPECT_TRUE(session.desktop("A-2").isCurrent);

    session.state().switchTo(session.desktop("A-2"));
    session.loop.advance(1);
    EXPECT_EQ(session.activator->asked.size(), 1u) << "there already";
    EXPECT_TRUE(session.notices.empty());

    session.state().switchBack();
    session.loop.advance(1);
    session.tell();
    EXPECT_TRUE(session.desktop("A-1").isCurrent);
    EXPECT_TRUE(session.notices.empty());
}

TEST(AppState, tellsWhyASwitchFailed) {
    ScriptedSession session(twoDisplays());
    session.start();
    const Desktop doomed = session.desktop("B-2");
    session.provider->current.displays[1].spaces.pop_back();
    session.state().switchTo(doomed);
    session.loop.advance(5);
    ASSERT_EQ(session.notices.size(), 1u);
    EXPECT_EQ(session.notices.back(), (Notice{"That desktop no longer exists.", failureNoticeSeconds}));

    session.activator->failure =
        std::make_exception_ptr(WindowManagerError(WindowManagerError::Case::refused, "i3", "no"));
    session.state().switchTo(session.desktop("A-2"));
    session.loop.advance(10);
    ASSERT_EQ(session.notices.size(), 2u);
    EXPECT_EQ(session.notices.back().text, "i3 refused a command: no.");

    session.provider->failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    session.state().switchTo(session.desktop("A-3"));
    session.loop.advance(10);
    ASSERT_EQ(session.notices.size(), 3u);
    EXPECT_EQ(session.notices.back().text, "Could not read the list of desktops.");
}

TEST(AppState, theLastRequestWins) {
    ScriptedSession session(twoDisplays());
    session.start();
    session.activator->obeys = false; // the first switch is still being waited for
    session.state().switchTo(session.desktop("A-2"));
    session.loop.advance(0.05);
    ASSERT_FALSE(session.activator->asked.empty());
    session.activator->obeys = true;
    session.state().switchTo(session.desktop("A-3"));
    session.loop.advance(30);
    EXPECT_EQ(session.activator->asked.back(), SpaceID{3});
    EXPECT_EQ(session.provider->current.displays[0].currentID, SpaceID{3});
    EXPECT_TRUE(session.notices.empty()) << "nobody asks any more what became of the first";
}

TEST(AppState, requestsForOtherDisplaysStandBesideEachOther) {
    ScriptedSession session(twoDisplays());
    session.start();
    session.activator->obeys = false;
    session.state().switchTo(session.desktop("A-2"));
    session.loop.advance(0.05);
    session.activator->obeys = true;
    session.state().switchTo(session.desktop("B-2"));
    session.loop.advance(30);
    EXPECT_EQ(session.provider->current.displays[0].currentID, SpaceID{2}) << "asked for once more";
    EXPECT_EQ(session.provider->current.displays[1].currentID, SpaceID{12});

    session.userShows(1);
    session.state().switchBack(DisplayID{"A"});
    session.loop.advance(1);
    EXPECT_EQ(session.provider->current.displays[0].currentID, SpaceID{2});
    session.state().switchBack(DisplayID{"nowhere"});
    session.loop.advance(1);
    EXPECT_EQ(session.notices.size(), 1u);
}

/// Displays A and B, of which the second desktops are linked as "Mail" and B's has no name of its own.
struct LinkedSession : ScriptedSession {
    LinkedSession() : ScriptedSession(twoDisplays()) {
        settings.displayLinkMode.set(DisplayLinkMode::linked);
        start();
        catalog().rename("A-2", "Mail");
        EXPECT_TRUE(catalog().link("A-2", "B-2"));
    }
};

TEST(AppState, aGroupGivesWayToALaterRequestAndTellsOfItsFailuresItself) {
    LinkedSession session;
    session.provider->cursor = DisplayID{"A"};
    session.state().switchTo(session.desktop("B-2"));
    session.loop.advance(0.0005);
    ASSERT_EQ(session.activator->asked, (std::vector{SpaceID{2}}));
    session.state().switchTo(session.desktop("A-3"));
    session.loop.advance(5);
    EXPECT_EQ(session.activator->asked.back(), SpaceID{3}) << "nothing of the group comes after it";
    EXPECT_EQ(session.provider->current.displays[0].currentID, SpaceID{3});
    EXPECT_EQ(session.provider->current.displays[1].currentID, SpaceID{11});
    EXPECT_TRUE(session.notices.empty());

    session.activator->failure =
        std::make_exception_ptr(WindowManagerError(WindowManagerError::Case::refused, "i3", "no"));
    session.state().switchTo(session.desktop("B-2"));
    session.loop.advance(5);
    EXPECT_EQ(session.notices,
              (std::vector{Notice{"Monitor A did not follow: i3 refused a command: no.", 2.2}}));
}

TEST(AppState, theWindowManagerKeepsWhatIsLinkedWhileLinksDoNotHold) {
    LinkedSession session;
    EXPECT_EQ(session.publisher->lastNames(), (Texts{"Mail", "Mail"}));
    session.settings.displayLinkMode.set(DisplayLinkMode::independent);
    EXPECT_EQ(session.publisher->lastNames(), (Texts{"Mail", ""}));
    EXPECT_EQ(session.publisher->published.back().back().spaceKey, "B-2");
    session.catalog().unlink("A-2", "unlinked");
    session.tell();
    EXPECT_EQ(session.publisher->lastNames(), Texts{"Mail"});
}

TEST(AppState, reportsADamagedFileOnce) {
    ScriptedSession session(twoDisplays());
    replaceFile(session.folder / "desktops.json", "{ not json");
    session.start();
    ASSERT_EQ(session.notices.size(), 1u) << "it waited for the first listener";
    const std::string& text = session.notices.front().text;
    EXPECT_TRUE(
        text.starts_with("Your desktop names could not be read. The file was damaged. It was kept at " +
                         (session.folder / "desktops.json.corrupt-").string()))
        << text;
    EXPECT_TRUE(text.ends_with(" and Lumnara started with an empty list.")) << text;
    const auto later =
        session.state().notices().subscribe([](const Notice&) { ADD_FAILURE() << "told twice"; });
}

TEST(AppState, reportsAFileThatCantBeRead) {
    ScriptedSession session(twoDisplays());
    std::filesystem::create_directory(session.folder / "desktops.json");
    session.start();
    ASSERT_EQ(session.notices.size(), 1u);
    EXPECT_TRUE(session.notices.front().text.ends_with("Names are not being saved until it can."))
        << session.notices.front().text;
    session.state().stop();
}

TEST(AppState, savesTheNamesAtStop) {
    ScriptedSession session(twoDisplays());
    session.start();
    session.catalog().rename("A-1", "Mail");
    EXPECT_FALSE(std::filesystem::exists(session.folder / "desktops.json"));
    session.state().stop();
    EXPECT_NE(readFile(session.folder / "desktops.json").find("Mail"), std::string::npos);
}

TEST(AppState, getsByWithoutAPlatform) {
    async::TestLoop loop;
    TemporaryFolder folder;
    Platform nothing;
    MemoryDefaultsStore defaults;
    AppSettings settings(defaults);
    nothing.spaceProvider =
        std::make_unique<SnapshotSpaceProvider>(SpaceSnapshot{twoDisplays(), loop.date()});
    RecordingExecutor executor;
    AppState state(loop, settings, nothing, executor, folder.path());
    std::vector<Notice> notices;
    const auto listening =
        state.notices().subscribe([&](const Notice& notice) { notices.push_back(notice); });
    state.catalog().rename("A-1", "Mail");
    state.catalog().refresh();
    state.switchTo(state.catalog().desktops()[1]);
    loop.advance(1);
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_EQ(notices.front().text, "No switching engine is available.");
}

} // namespace
} // namespace lumnara::testing
