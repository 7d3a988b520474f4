#include "app/board/QuickSwitcherController.h"
#include "core/arranging/DesktopArranger.h"

#include "tests/app/ScriptedSession.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

/// Writes down what it is told, as "A show", for all surfaces in one list.
class RecordingSurface : public BoardSurface {
public:
    RecordingSurface(QuickSwitcherModel& shown, std::vector<std::string>& events)
        : model(shown),
          events_(events) {}

    ~RecordingSurface() override { note("gone"); }

    void prepare(const ScreenInfo& screen) override {
        name_ = screen.uuid;
        note("prepare");
    }
    void show(const ScreenInfo& screen) override {
        name_ = screen.uuid;
        note("show");
    }
    void hide() override { note("hide"); }
    void redraw() override { ++redraws; }
    void takeKeyboard() override { note("keyboard"); }
    std::optional<std::string> tileAt(Point) const override { return underPointer; }
    void openMenu(const std::string& key, const std::vector<DesktopMenuItem>& items) override {
        note(("menu of " + key).c_str());
        menu = items;
    }

    const std::string& name() const { return name_; }
    bool press(KeyCode code, std::string text = {}, ModifierFlags modifiers = {}, bool repeats = false) {
        return onKey({code, modifiers, std::move(text), repeats});
    }
    bool type(const std::string& text) { return onKey({std::nullopt, {}, text, false}); }

    QuickSwitcherModel& model;
    int redraws = 0;
    std::optional<std::string> underPointer;
    std::vector<DesktopMenuItem> menu;

private:
    void note(const char* what) { events_.push_back(name_ + " " + what); }

    std::string name_;
    std::vector<std::string>& events_;
};

class RecordingFactory : public BoardSurfaceFactory {
public:
    std::unique_ptr<BoardSurface> makeSurface(QuickSwitcherModel& model) override {
        auto surface = std::make_unique<RecordingSurface>(model, events);
        made.push_back(surface.get());
        return surface;
    }
    RecordingSurface& on(const std::string& screen) {
        for (RecordingSurface* surface : made)
            if (surface->name() == screen) return *surface;
        throw std::logic_error("no surface on " + screen);
    }

    std::vector<RecordingSurface*> made;
    std::vector<std::string> events;
};

struct Board {
    explicit Board(std::vector<DisplaySpaces> displays, bool canAdd = false)
        : session(std::move(displays)),
          controller(start(canAdd), factory) {}

    AppState& start(bool canAdd) {
        if (canAdd) {
            auto adding = std::make_unique<AddingArranger>(*session.provider);
            arranger = adding.get();
            session.platform.arranger = std::move(adding);
        }
        return session.start();
    }

    Texts events() { return std::exchange(factory.events, {}); }
    RecordingSurface& on(const std::string& screen) { return factory.on(screen); }

    ScriptedSession session;
    RecordingFactory factory;
    AddingArranger* arranger = nullptr;
    QuickSwitcherController controller;
};

TEST(QuickSwitcherController, PreparesItsPanelsAndGivesThemBackWhenLongClosed) {
    Board board(twoDisplays());
    board.controller.prepare();
    board.controller.prepare();
    EXPECT_EQ(board.events(), (Texts{"A prepare", "B prepare"}));
    board.session.loop.advance(1000);
    for (int round = 0; round < 2; ++round) {
        board.controller.toggle();
        EXPECT_EQ(board.events(), (Texts{"A show", "B show", "A keyboard"}));
        board.session.loop.advance(200);
        board.controller.toggle();
        board.session.loop.advance(119);
        EXPECT_EQ(board.events(), (Texts{"A hide", "B hide"}));
    }
    board.session.loop.advance(2);
    EXPECT_EQ(board.events(), (Texts{"A gone", "B gone"}));
    board.controller.toggle();
    EXPECT_EQ(board.events(), (Texts{"A show", "B show", "A keyboard"}));
}

TEST(QuickSwitcherController, putsUpASurfacePerDisplay) {
    Board board(twoDisplays());
    board.session.screens->under = "B";
    board.session.logged.clear();
    board.controller.toggle();
    EXPECT_EQ(board.events(), (Texts{"A show", "B show", "B keyboard"}));
    EXPECT_EQ(board.session.logged,
              (Texts{"Lumnara Board: surface Monitor A frame 0,0 1280x800 key 0",
                     "Lumnara Board: surface Monitor B frame 1280,0 1280x800 key 1",
                     "Lumnara Board: open on 2 of 2 screens (every display: 1), key on Monitor B"}));
    EXPECT_EQ(board.on("A").model.scope(), "A");
    EXPECT_EQ(board.on("B").model.results().size(), 2u);
    EXPECT_TRUE(board.on("B").model.scopeFixed());

    board.controller.toggle();
    EXPECT_EQ(board.events(), (Texts{"A hide", "B hide"}));
    EXPECT_FALSE(board.controller.isOpen());

    board.controller.open();
    board.controller.open();
    EXPECT_EQ(board.factory.made.size(), 2u) << "surfaces are used again";
}

TEST(QuickSwitcherController, followsTheSettingsFromOneOpeningToTheNext) {
    Board board(twoDisplays());
    board.controller.open();
    QuickSwitcherModel& model = board.on("A").model;
    EXPECT_EQ(model.appearance(), (AppSettings::BoardAppearance{196, 18, 28, true}));
    EXPECT_EQ(model.gridColumns(), 3);

    board.session.settings.boardTileWidth.set(320);
    board.session.settings.boardNameSize.set(24);
    board.session.defaults.changeFromElsewhere("board.everyDisplay", false);
    board.session.screens->list.front().frame.width = 1000;
    EXPECT_EQ(model.appearance().tileWidth, 196) << "an open Board stands as it is";
    board.controller.close();
    board.events();
    board.controller.open();
    EXPECT_EQ(board.events(), (Texts{"A show", "A keyboard"}));
    EXPECT_EQ(model.appearance(), (AppSettings::BoardAppearance{320, 24, 28, true}));
    EXPECT_EQ(model.gridColumns(), 2);

    board.controller.close();
    board.session.settings.setBoardAppearance("A", {140, 12, 20, true});
    board.controller.open();
    EXPECT_EQ(model.appearance(), (AppSettings::BoardAppearance{140, 12, 20, true}))
        << "its own, not the general one";
}

TEST(QuickSwitcherController, putsUpOneSurfaceWhereThatIsEnough) {
    Board chosen(twoDisplays());
    chosen.session.settings.boardOnEveryDisplay.set(false);
    chosen.session.screens->under = "B";
    chosen.controller.open();
    EXPECT_EQ(chosen.events(), (Texts{"B show", "B keyboard"}));
    EXPECT_TRUE(chosen.controller.covers(chosen.session.screens->list[1]));
    EXPECT_FALSE(chosen.controller.covers(chosen.session.screens->list[0]));
    EXPECT_EQ(chosen.on("B").model.results().size(), 5u);
    EXPECT_TRUE(chosen.on("B").model.canCycleScope());

    Board single({displayOf("A", 3, 1)});
    single.controller.open();
    EXPECT_EQ(single.events(), (Texts{"A show", "A keyboard"}));
    EXPECT_FALSE(single.on("A").model.canCycleScope());

    Board shared({displayOf("Main", 3, 1)});
    shared.session.screens->list = {{"L", "L", "Left", Rect{0, 0, 1280, 800}, 1},
                                    {"R", "R", "Right", Rect{1280, 0, 1280, 800}, 1}};
    shared.session.screens->under = "r";
    shared.controller.open();
    EXPECT_EQ(shared.events(), (Texts{"R show", "R keyboard"})) << "one arrangement over two screens";
    EXPECT_EQ(shared.on("R").model.boardDisplay(), DisplayID{"Main"});

    Board blind(twoDisplays());
    blind.session.screens->list.clear();
    blind.controller.open();
    EXPECT_FALSE(blind.controller.isOpen());
}

TEST(QuickSwitcherController, readsAStaleLayoutAgainAndStaysFresh) {
    Board board(twoDisplays());
    const int atStart = board.session.provider->readings;
    board.controller.open();
    EXPECT_EQ(board.session.provider->readings, atStart);
    board.session.loop.advance(2.0);
    EXPECT_EQ(board.session.provider->readings, atStart + 1) << "every 2 seconds while open";
    board.controller.close();
    board.session.loop.advance(10);
    EXPECT_EQ(board.session.provider->readings, atStart + 1);
    board.session.provider->current.displays[0].spaces.pop_back();
    board.controller.open();
    EXPECT_EQ(board.on("A").model.results().size(), 2u);
}

TEST(QuickSwitcherController, showsTheErrorAndTheOldTiles) {
    Board board(twoDisplays());
    board.session.provider->failure =
        std::make_exception_ptr(WindowManagerError(WindowManagerError::Case::notAnswering, "i3"));
    board.session.loop.advance(3);
    board.controller.open();
    EXPECT_EQ(board.on("A").model.errorText(), "i3 is not answering. Lumnara keeps asking.");
    EXPECT_EQ(board.on("A").model.results().size(), 3u);
    const int redraws = board.on("A").redraws;
    board.session.provider->failure = nullptr;
    board.session.loop.advance(2);
    EXPECT_FALSE(board.on("A").model.errorText());
    EXPECT_GT(board.on("A").redraws, redraws);
}

TEST(QuickSwitcherController, asksAWindowManagerAndClosesThen) {
    Board board(twoDisplays());
    std::vector<std::string> order;
    auto& asked = board.session.activator->asked;
    board.controller.onClosed = [&] { order.push_back("closed, asked " + std::to_string(asked.size())); };
    board.controller.onSwitchedFromBoard = [&](const Desktop& desktop) { order.push_back(desktop.spaceKey); };
    board.controller.open();
    EXPECT_TRUE(board.on("A").type("3"));
    EXPECT_TRUE(asked.empty()) << "not inside the key press";
    EXPECT_TRUE(board.on("A").type("2")) << "a choice has been made";
    board.session.loop.advance(1);
    EXPECT_EQ(asked, (std::vector{SpaceID{3}}));
    EXPECT_EQ(order, (Texts{"closed, asked 1", "A-3"}));
    EXPECT_FALSE(board.controller.isOpen());

    board.controller.open();
    board.on("B").onSwitch("no such tile");
    EXPECT_TRUE(board.controller.isOpen());
    board.on("B").onSwitch("B-2");
    board.session.loop.advance(1);
    EXPECT_EQ(board.session.activator->asked.back(), SpaceID{12});
}

TEST(QuickSwitcherController, closesBeforeItSwitchesAMac) {
    Board board(twoDisplays());
    board.session.platform.kind = PlatformKind::mac;
    std::vector<std::string> order;
    board.controller.onClosed = [&] { order.push_back("closed"); };
    board.controller.onSwitchedFromBoard = [&](const Desktop& desktop) { order.push_back(desktop.spaceKey); };
    board.controller.open();
    EXPECT_TRUE(board.on("A").type("3"));
    EXPECT_EQ(order, (Texts{"closed", "A-3"}));
}

TEST(QuickSwitcherController, keysGoToTheSurfaceUnderThePointer) {
    Board board(twoDisplays());
    board.controller.open();
    board.events();
    board.on("A").type("m");
    board.on("B").onPointerEntered();
    board.on("B").onPointerEntered();
    EXPECT_EQ(board.events(), (Texts{"B keyboard"}));
    board.on("A").type("x"); // the toolkit may be late to notice
    EXPECT_EQ(board.on("A").model.query(), "m");
    EXPECT_EQ(board.on("B").model.query(), "x");
    board.on("A").onPointerEntered();
    EXPECT_EQ(board.on("A").model.query(), "m") << "each keeps its own";

    board.controller.close();
    board.events();
    board.on("B").onPointerEntered();
    EXPECT_TRUE(board.events().empty()) << "no panel is up";
    EXPECT_FALSE(board.on("B").type("x"));
}

TEST(QuickSwitcherController, tabReachesTheOtherScreensWithoutThePointer) {
    Board board(twoDisplays());
    board.controller.open();
    board.events();
    EXPECT_TRUE(board.on("A").press(KeyCode::tab, "\t"));
    EXPECT_TRUE(board.on("B").press(KeyCode::tab, "\t"));
    EXPECT_TRUE(board.on("A").press(KeyCode::tab, "\t", {.shift = true}));
    EXPECT_EQ(board.events(), (Texts{"B keyboard", "A keyboard", "B keyboard"}));

    board.on("B").model.beginRename(*board.on("B").model.selectedKey());
    EXPECT_FALSE(board.on("B").press(KeyCode::tab, "\t")) << "an edit keeps the keyboard";
    EXPECT_TRUE(board.events().empty());
}

TEST(QuickSwitcherController, onlyAPointerThatMovesSelects) {
    Board board(twoDisplays());
    board.session.screens->at = Point{100, 100};
    board.controller.open();
    RecordingSurface& a = board.on("A");
    a.onHoverTile("A-2", {100, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-1") << "the Board opened under a pointer that stands still";
    a.onHoverTile("A-2", {101, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-2");
    a.onHoverTile(std::nullopt, {90, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-2");
    a.onHoverTile("A-3", {90, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-2") << "the tile came to the pointer";

    board.controller.close();
    board.session.screens->at = std::nullopt;
    board.controller.open();
    a.onHoverTile("A-3", {90, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-1") << "where the pointer was is not known";
    a.onHoverTile("A-3", {91, 100});
    EXPECT_EQ(a.model.selectedKey(), "A-3");
}

TEST(QuickSwitcherController, itsOwnShortcutClosesItOncePressedAgain) {
    Board board(twoDisplays());
    board.controller.toggleShortcut = Shortcut{KeyCode::space, {.option = true}};
    board.controller.open();
    EXPECT_TRUE(board.on("A").press(KeyCode::space, " ", {.option = true}, true));
    EXPECT_TRUE(board.controller.isOpen()) << "still held from the opening";
    EXPECT_FALSE(board.on("A").model.expandedKey());
    EXPECT_TRUE(board.on("A").press(KeyCode::space, " "));
    EXPECT_TRUE(board.controller.isOpen());
    EXPECT_TRUE(board.on("A").press(KeyCode::space, " ", {.option = true}));
    EXPECT_FALSE(board.controller.isOpen());
}

TEST(QuickSwitcherController, aClickBesideTheNameEndsTheEdit) {
    Board board(twoDisplays());
    board.controller.open();
    RecordingSurface& a = board.on("A");
    a.model.beginRename("A-1");
    a.type("Post");
    a.onSwitch("A-1");
    EXPECT_EQ(a.model.renamingKey(), "A-1");
    a.onSwitch("A-2");
    EXPECT_TRUE(board.controller.isOpen());
    EXPECT_EQ(a.model.results().front()->displayName(), "Post");

    a.model.beginRename("A-1");
    a.type("2");
    a.onClose();
    EXPECT_TRUE(board.controller.isOpen());
    EXPECT_EQ(a.model.results().front()->displayName(), "Post2");
    a.onClose();
    EXPECT_FALSE(board.controller.isOpen());
}

TEST(QuickSwitcherController, closesWhenTheScreensChange) {
    Board board(twoDisplays());
    board.controller.open();
    board.session.tell(WorkspaceEvent::screenParametersDidChange);
    EXPECT_TRUE(board.controller.isOpen()) << "nothing moved";
    board.session.screens->list.pop_back();
    board.session.provider->current.displays.pop_back();
    board.session.tell(WorkspaceEvent::screenParametersDidChange);
    EXPECT_FALSE(board.controller.isOpen());
    board.events();
    board.factory.made.clear();
    board.controller.open();
    EXPECT_EQ(board.events(), (Texts{"B gone", "A show", "A keyboard"}));
}

TEST(QuickSwitcherController, holdsTheListsStillUnderAMenu) {
    Board board(twoDisplays());
    board.controller.open();
    board.session.logged.clear();
    board.on("A").onMenuTracking(true);
    board.session.provider->current.displays[1].spaces.pop_back();
    board.session.tell();
    EXPECT_EQ(board.on("B").model.results().size(), 2u);
    board.on("A").onMenuTracking(false);
    EXPECT_EQ(board.on("B").model.results().size(), 1u);
    EXPECT_EQ(board.session.logged, (Texts{"Lumnara menu tracking began (board visible: 1)",
                                           "Lumnara menu tracking ended (board visible: 1)"}));

    board.on("A").onMenuTracking(true);
    board.controller.close();
    board.controller.trackMenu(false);
    board.session.provider->current.displays[0].spaces.pop_back();
    board.session.tell();
    board.controller.open();
    EXPECT_EQ(board.on("A").model.results().size(), 2u) << "the menu ended with the Board it stood over";
}

constexpr Point onA{100, 100};
constexpr Point onB{1280 + 300, 200};

struct LinkBoard : Board {
    explicit LinkBoard(bool canAdd = false) : Board(twoDisplays(), canAdd) {
        session.settings.displayLinkMode.set(DisplayLinkMode::linked);
        controller.open();
        events();
    }
    /// What the error line of a screen's Board says.
    std::string error(const std::string& screen) { return on(screen).model.errorText().value_or(""); }
};

TEST(QuickSwitcherController, aTileDraggedToTheOtherScreenIsLinkedThere) {
    LinkBoard board;
    board.session.catalog().rename("A-2", "Mail");
    RecordingSurface& a = board.on("A");
    RecordingSurface& b = board.on("B");
    a.model.moveTile("A-2", "A-1"); // on its way out
    b.underPointer = "B-1";
    a.onDragAcross("A-2", onB);
    EXPECT_EQ(a.model.results().front()->key, "A-1") << "the way out orders nothing";
    ASSERT_TRUE(b.model.incomingLink());
    EXPECT_EQ(b.model.incomingLink()->desktop.key, "A-2");
    EXPECT_EQ(b.model.incomingLink()->point, (Point{300, 200}));
    EXPECT_EQ(b.model.incomingLink()->targetKey, "B-1");
    EXPECT_FALSE(a.model.incomingLink());

    a.onDragAcrossEnded(false, "A-2", onA);
    EXPECT_FALSE(b.model.incomingLink());
    b.underPointer = "B-2";
    a.onDragAcross("A-2", onB);
    a.onDragAcrossEnded(true, "A-2", onB);
    board.session.loop.advance(0.1);
    EXPECT_FALSE(b.model.incomingLink());
    EXPECT_EQ(board.session.desktop("B-2").displayName(), "Mail");
    EXPECT_EQ(board.session.desktop("A-2").key, board.session.desktop("B-2").key);
    EXPECT_EQ(board.session.notices.back().text, "Displays linked. Choose “Mail” and both screens go there.");
    EXPECT_TRUE(board.controller.isOpen());
    EXPECT_EQ(board.session.catalog().linkedMembers("A-2").size(), 2u);
}

TEST(QuickSwitcherController, aDragThatMeansNoLinkMakesNone) {
    LinkBoard board;
    RecordingSurface& a = board.on("A");
    RecordingSurface& b = board.on("B");
    const auto drop = [&](std::optional<std::string> under, Point at) {
        b.underPointer = std::move(under);
        a.onDragAcross("A-1", at);
        a.onDragAcrossEnded(true, "A-1", at);
        board.session.loop.advance(0.1);
    };
    drop(std::nullopt, onB);
    drop("B-1", {-50, 100});
    drop("B-1", onA);
    EXPECT_FALSE(board.session.catalog().store().file()->links);
    EXPECT_EQ(board.error("A"), "");

    board.session.settings.displayLinkMode.set(DisplayLinkMode::independent);
    a.onDragAcross("A-1", onB);
    EXPECT_FALSE(b.model.incomingLink());
    a.onDragAcrossEnded(true, "A-1", onB);
    EXPECT_EQ(board.error("A"), "Links are off. “Link Displays” in the menu of a tile turns them on.");

    // A Board that goes down under a drag takes the tile with it.
    board.session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    a.onDragAcross("A-1", onB);
    board.controller.close();
    EXPECT_FALSE(b.model.incomingLink());
    a.onDragAcrossEnded(true, "A-1", onB);
    board.session.loop.advance(0.1);
    EXPECT_FALSE(board.session.catalog().store().file()->links);
}

TEST(QuickSwitcherController, theMenuOfATileDoesWhatItSays) {
    LinkBoard board;
    RecordingSurface& a = board.on("A");
    const auto titles = [&] {
        Texts titles;
        for (const DesktopMenuItem& item : a.menu) titles.push_back(item.title);
        return titles;
    };
    a.press(KeyCode::l, "l", {.command = true});
    EXPECT_EQ(board.events(), Texts{"A menu of A-1"});
    EXPECT_EQ(titles(), (Texts{"Rename…", "Dim", "", "Link with"}));
    ASSERT_EQ(a.menu[3].children.size(), 2u);
    a.onMenuChosen(a.menu[3].children[1]);
    board.session.loop.advance(0.1);
    EXPECT_EQ(board.session.desktop("A-1").key, board.session.desktop("B-2").key);

    a.onTileMenu(board.session.desktop("A-1").key);
    EXPECT_EQ(titles(), (Texts{"Rename…", "Dim", "", "Unlink"}));
    const DesktopMenuItem unlink = a.menu[3];
    a.onMenuChosen(unlink);
    board.session.loop.advance(0.1);
    EXPECT_EQ(board.session.notices.back().text, "“Desktop 1” is back to one screen.");
    a.onMenuChosen(unlink);
    board.session.loop.advance(0.1);
    EXPECT_EQ(board.error("A"), "“Desktop 1” is not linked to another desktop.") << "on the error line";

    a.onTileMenu("A-2");
    EXPECT_EQ(a.model.selectedKey(), "A-2");
    a.onMenuChosen(a.menu[1]);
    EXPECT_TRUE(board.session.desktop("A-2").record->isDimmed);
    a.onMenuChosen(a.menu[0]);
    EXPECT_EQ(a.model.renamingKey(), "A-2");
    board.events();
    a.press(KeyCode::contextMenu);
    EXPECT_TRUE(board.events().empty()) << "not under an edit";

    board.session.settings.displayLinkMode.set(DisplayLinkMode::independent);
    a.model.cancelRename();
    a.press(KeyCode::contextMenu);
    EXPECT_EQ(titles(), (Texts{"Rename…", "Stop Dimming", "", "Link Displays"}));
    a.onMenuChosen(a.menu[3]);
    EXPECT_TRUE(a.model.linksAcross());
}

TEST(QuickSwitcherController, theMenuOfATileMakesALinkedDesktop) {
    LinkBoard board(true);
    RecordingSurface& a = board.on("A");
    a.onTileMenu("A-1");
    ASSERT_EQ(a.menu.size(), 5u);
    const DesktopMenuItem line = a.menu.back();
    EXPECT_EQ(line.title, "New desktop, linked to this one");
    EXPECT_EQ(line.request, LinkRequest::create(board.session.desktop("A-1")));
    a.onMenuChosen(line);
    board.session.loop.advance(0.1);
    const Desktop made = board.session.desktop("added-90");
    EXPECT_EQ(made.display, DisplayID{"B"});
    EXPECT_EQ(made.key, board.session.desktop("A-1").key);
    a.onTileMenu(made.key);
    EXPECT_EQ(a.menu.back().title, "Unlink");

    board.arranger->adds = 2; // somebody else added one too
    a.onTileMenu("A-2");
    a.onMenuChosen(a.menu.back());
    board.session.loop.advance(0.1);
    EXPECT_FALSE(board.session.desktop("A-2").isLinked());
    EXPECT_NE(board.error("A").find("could not tell which one it is"), std::string::npos);
}

} // namespace
} // namespace lumnara::testing
