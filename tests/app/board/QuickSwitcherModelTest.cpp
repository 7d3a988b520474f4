#include "app/board/QuickSwitcherModel.h"

#include "tests/app/ScriptedSession.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace lumnara::testing {
namespace {

Texts keys(const QuickSwitcherModel& model) {
    Texts keys;
    for (const Desktop* tile : model.results()) keys.push_back(tile->key);
    return keys;
}

Texts names(const QuickSwitcherModel& model) {
    Texts names;
    for (const Desktop* tile : model.results()) names.push_back(tile->displayName());
    return names;
}

/// A session with a model that is open over all its displays.
struct OpenModel {
    explicit OpenModel(std::vector<DisplaySpaces> displays, double width = 1280, double tileWidth = 196)
        : session(std::move(displays)),
          model(session.start().catalog(), session.settings) {
        session.settings.boardTileWidth.set(tileWidth);
        model.open(session.catalog().displays->empty()
                       ? std::nullopt
                       : std::optional(session.catalog().displays->front().display),
                   width, false);
        model.reset();
    }
    DesktopCatalog& catalog() { return session.catalog(); }

    ScriptedSession session;
    QuickSwitcherModel model;
};

TEST(QuickSwitcherModel, countsTheColumnsThatFit) {
    struct Case {
        int tiles;
        double width;
        double tileWidth;
        int columns;
    };
    const Case cases[] = {
        {5, 2000, 196, 5},   // 8 would fit, there are 5
        {7, 2000, 196, 6},   // never more than 6
        {7, 724, 196, 3},    // exactly 3 tiles, 2 gaps and the margins
        {7, 723, 196, 2},    // a point less
        {7, 0, 196, 6},      // width not known
        {7, 100, 196, 1},    // none fits
        {7, 2000, -20, 6},   // a stored width that nobody could have meant
        {7, 2000, 1e300, 1}, //
        {1, 2000, 196, 1},   //
    };
    for (const Case& c : cases) {
        OpenModel open({displayOf("A", c.tiles, 1)}, c.width, c.tileWidth);
        EXPECT_EQ(open.model.gridColumns(), c.columns) << c.tiles << " tiles on " << c.width;
    }

    OpenModel open({displayOf("A", 4, 1)});
    open.session.settings.setBoardAppearance("a", {500, 30, 28, true});
    EXPECT_EQ(open.model.gridColumns(), 4) << "not while it is open";
    open.model.open(DisplayID{"A"}, 1280, false);
    EXPECT_EQ(open.model.gridColumns(), 2);
    EXPECT_EQ(open.model.appearance().nameSize, 30);

    open.model.setQuery("qqqq");
    EXPECT_EQ(open.model.gridColumns(), 1);
}

TEST(QuickSwitcherModel, movesTheSelectionWithoutWrapping) {
    struct Case {
        int from;
        int dx;
        int dy;
        int to;
    };
    // Rows of 3: 0 1 2 / 3 4 5 / 6
    const Case cases[] = {
        {0, 1, 0, 1},  {2, 1, 0, 3}, {6, 1, 0, 6}, {0, -1, 0, 0}, {3, -1, 0, 2}, {0, 0, -1, 0},
        {4, 0, -1, 1}, {1, 0, 1, 4}, {3, 0, 1, 6}, {5, 0, 1, 6},  {6, 0, 1, 6},
    };
    OpenModel open({displayOf("A", 7, 1)}, 724);
    ASSERT_EQ(open.model.gridColumns(), 3);
    const Texts all = keys(open.model);
    for (const Case& c : cases) {
        open.model.select(all[static_cast<std::size_t>(c.from)]);
        open.model.moveSelection(c.dx, c.dy);
        EXPECT_EQ(open.model.selectedKey(), all[static_cast<std::size_t>(c.to)])
            << c.from << " by " << c.dx << ", " << c.dy;
    }

    open.model.select(all[1]);
    open.model.toggleExpanded();
    open.model.moveSelection(1, 0);
    EXPECT_EQ(open.model.expandedKey(), all[2]) << "the full-size tile follows";
    open.model.moveSelection(0, 1);
    open.model.moveSelection(0, 1);
    open.model.moveSelection(0, 1);
    EXPECT_EQ(open.model.expandedKey(), all[6]);
}

TEST(QuickSwitcherModel, movesByPagesInTheSameColumn) {
    OpenModel open({displayOf("A", 20, 1)}, 724); // 6 rows of 3, the last of 2
    const Texts all = keys(open.model);
    open.model.setVisibleRows(3);
    open.model.select(all[2]);
    open.model.movePage(1);
    EXPECT_EQ(open.model.selectedKey(), all[11]);
    open.model.movePage(1);
    EXPECT_EQ(open.model.selectedKey(), all[19]) << "the last row has no third tile";
    open.model.movePage(-1);
    EXPECT_EQ(open.model.selectedKey(), all[10]);
    open.model.movePage(-1);
    open.model.movePage(-1);
    EXPECT_EQ(open.model.selectedKey(), all[1]);
    open.model.selectLast();
    EXPECT_EQ(open.model.selectedKey(), all[19]);
    open.model.selectFirst();
    EXPECT_EQ(open.model.selectedKey(), all[0]);
}

TEST(QuickSwitcherModel, findsATileByItsDigit) {
    OpenModel open({displayOf("A", 4, 1)});
    EXPECT_EQ(open.model.desktopAtDigit(1)->key, "A-1");
    EXPECT_EQ(open.model.desktopAtDigit(4)->key, "A-4");
    for (const int none : {-1, 0, 5, 9, 10}) EXPECT_FALSE(open.model.desktopAtDigit(none)) << none;
}

TEST(QuickSwitcherModel, startsOnTheCurrentDesktop) {
    auto display = displayOf("A", 4, 1);
    display.currentID = SpaceID{3};
    OpenModel open({display});
    EXPECT_EQ(open.model.selectedKey(), "A-3");

    open.model.setQuery("2");
    open.model.toggleExpanded();
    open.model.beginRename("A-2");
    open.session.userShows(2);
    open.model.reset();
    EXPECT_EQ(open.model.query(), "");
    EXPECT_EQ(open.model.selectedKey(), "A-2");
    EXPECT_FALSE(open.model.expandedKey());
    EXPECT_FALSE(open.model.renamingKey());
    EXPECT_EQ(open.model.renameText(), "");
}

TEST(QuickSwitcherModel, filtersAsTheMatcherDoes) {
    OpenModel open({displayOf("A", 5, 1), displayOf("B", 2, 11)});
    open.catalog().rename("A-2", "Mail");
    open.catalog().rename("A-4", "Main project");
    open.catalog().rename("B-1", "Mail");
    open.model.setQuery("mail");
    EXPECT_EQ(names(open.model).front(), "Mail");
    EXPECT_EQ(open.model.selectedKey(), keys(open.model).front());

    open.model.setQuery("5");
    EXPECT_EQ(keys(open.model).front(), "A-5") << "a number stands for the desktop of that number";

    open.model.setQuery("");
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-2", "A-3", "A-4", "A-5", "B-1", "B-2"}));
    EXPECT_EQ(open.model.selectedKey(), "A-5") << "still listed";

    open.model.setQuery("qqqq");
    EXPECT_TRUE(open.model.results().empty());
    EXPECT_FALSE(open.model.selectedKey());
    EXPECT_FALSE(open.model.selectedDesktop());
    open.model.moveSelection(1, 1);
    open.model.movePage(1);
    open.model.toggleDimmed();
    open.model.setQuery("");
    EXPECT_EQ(open.model.selectedKey(), "A-1");
}

TEST(QuickSwitcherModel, keepsTheSelectionWhileTheTileLives) {
    OpenModel open({displayOf("A", 4, 1)});
    open.model.select("A-3");
    open.model.select("no such tile");
    open.model.toggleExpanded();
    open.model.beginRename("A-3");
    auto& spaces = open.session.provider->current.displays[0].spaces;

    spaces.erase(spaces.begin() + 1);
    open.session.tell();
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-3", "A-4"}));
    EXPECT_EQ(open.model.selectedKey(), "A-3");
    EXPECT_EQ(open.model.expandedKey(), "A-3");
    EXPECT_EQ(open.model.renamingKey(), "A-3");

    spaces.erase(spaces.begin() + 1);
    open.session.tell();
    EXPECT_EQ(open.model.selectedKey(), "A-1");
    EXPECT_FALSE(open.model.expandedKey());
    EXPECT_FALSE(open.model.renamingKey()) << "there is nothing left to name";
}

TEST(QuickSwitcherModel, renames) {
    OpenModel open({displayOf("A", 3, 1)});
    open.model.beginRename("no such tile");
    EXPECT_FALSE(open.model.renamingKey());

    open.model.beginRename("A-2");
    EXPECT_EQ(open.model.selectedKey(), "A-2");
    EXPECT_EQ(open.model.renameText(), "") << "a generated name is nothing to edit";
    open.model.setRenameText("  Mail ");
    open.model.commitRename();
    EXPECT_EQ(names(open.model), (Texts{"Desktop 1", "Mail", "Desktop 3"}));
    EXPECT_EQ(open.model.selectedKey(), "A-2");

    open.model.beginRename("A-3");
    open.model.setRenameText("mail");
    open.model.commitRename();
    EXPECT_FALSE(open.model.renamingKey());
    EXPECT_EQ(open.model.errorText(), "Another desktop on this display is already called \"Mail\".");
    EXPECT_EQ(names(open.model), (Texts{"Desktop 1", "Mail", "Desktop 3"}));

    open.model.beginRename("A-2");
    EXPECT_EQ(open.model.renameText(), "Mail");
    open.model.setRenameText("Post");
    open.model.cancelRename();
    EXPECT_EQ(names(open.model)[1], "Mail");
    open.model.commitRename();
    EXPECT_EQ(names(open.model)[1], "Mail") << "no edit is under way";

    open.model.beginRename("A-2");
    open.model.setRenameText("Post");
    open.model.commitRename();
    EXPECT_FALSE(open.model.errorText()) << "a name that is taken clears the line";
    EXPECT_EQ(names(open.model)[1], "Post");

    open.model.beginRename("A-2");
    open.model.setRenameText("  ");
    open.model.commitRename();
    EXPECT_FALSE(open.model.errorText());
    EXPECT_EQ(names(open.model)[1], "Desktop 2") << "an emptied field takes the name off";
}

/// A session of displays A and B whose second desktops are linked as "Mail".
struct LinkedModel : OpenModel {
    explicit LinkedModel(std::vector<DisplaySpaces> displays = twoDisplays())
        : OpenModel(std::move(displays)) {
        session.settings.displayLinkMode.set(DisplayLinkMode::linked);
        catalog().rename("A-2", "Mail");
        EXPECT_TRUE(catalog().link("A-2", "B-2"));
        mail = catalog().desktopOfSpace("A-2")->key;
    }
    Texts order(const std::string& display) {
        Texts order;
        for (const Desktop& desktop : catalog().desktops(display)) order.push_back(desktop.spaceKey);
        return order;
    }

    std::string mail;
};

TEST(QuickSwitcherModel, showsALinkGroupOnce) {
    LinkedModel open;
    EXPECT_EQ(keys(open.model), (Texts{"A-1", open.mail, "A-3", "B-1"}));
    EXPECT_EQ(open.model.tile(open.mail)->spaceKey, "A-2");
    EXPECT_FALSE(open.model.canCycleScope()) << "each tile stands for desktops of both displays";

    open.model.open(DisplayID{"b"}, 1280, false);
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-3", "B-1", open.mail}));
    EXPECT_EQ(open.model.tile(open.mail)->spaceKey, "B-2") << "the one of this screen";
    open.model.open(DisplayID{"C"}, 1280, false);
    EXPECT_EQ(open.model.tile(open.mail)->spaceKey, "A-2");
    open.model.open(DisplayID{"B"}, 1280, true);
    EXPECT_EQ(keys(open.model), (Texts{"B-1", open.mail}));

    open.session.settings.displayLinkMode.set(DisplayLinkMode::independent);
    open.model.open(DisplayID{"A"}, 1280, false);
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-2", "A-3", "B-1", "B-2"}));
    EXPECT_TRUE(open.model.canCycleScope());
}

TEST(QuickSwitcherModel, displaysThatShareLinksFollowAnOrder) {
    LinkedModel open({displayOf("A", 3, 1), displayOf("B", 4, 11), displayOf("C", 2, 21)});
    EXPECT_TRUE(open.catalog().link("A-3", "B-1"));
    const std::string second = open.catalog().desktopOfSpace("A-3")->key;
    EXPECT_EQ(keys(open.model), (Texts{"A-1", open.mail, second, "B-3", "B-4", "C-1", "C-2"}));
    std::vector<Texts> told;
    open.model.onOrderCommitted = [&](const Texts& displays) { told.push_back(displays); };
    open.model.commitOrder();
    EXPECT_TRUE(told.empty()) << "that B's linked tiles are not listed is no new order";
    EXPECT_EQ(open.order("B"), (Texts{"B-1", "B-2", "B-3", "B-4"}));

    // In A the groups stand the other way round than in B, which hears of it at A's next change.
    open.session.logged.clear();
    open.model.moveTile(open.mail, "A-1");
    open.model.commitOrder();
    EXPECT_EQ(open.order("A"), (Texts{"A-2", "A-1", "A-3"}));
    EXPECT_EQ(open.order("B"), (Texts{"B-2", "B-1", "B-3", "B-4"}));
    EXPECT_EQ(told, (std::vector<Texts>{{"A", "B"}}));
    ASSERT_EQ(open.session.logged.size(), 2u);
    EXPECT_TRUE(open.session.logged[1].starts_with("Lumnara Board: display B follows A: "))
        << open.session.logged[1];

    open.model.moveTile("B-4", "B-3");
    open.model.commitOrder();
    EXPECT_EQ(open.order("B"), (Texts{"B-2", "B-1", "B-4", "B-3"})) << "the unlisted keep their places";
    EXPECT_EQ(told.back(), Texts{"B"});
}

TEST(QuickSwitcherModel, standsStillUnderAnOpenMenu) {
    OpenModel open({displayOf("A", 3, 1)});
    open.catalog().rename("A-2", "Mail");
    open.model.setMenuTracking(true);
    open.session.provider->current.displays[0].spaces.pop_back();
    open.session.tell();
    open.session.userShows(2);
    open.model.setQuery("mail");
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-2", "A-3"}));

    int changes = 0;
    const auto counting = open.model.changed.subscribe([&] { ++changes; });
    open.model.setMenuTracking(false);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(keys(open.model), (Texts{"A-2"}));
    open.model.setMenuTracking(true);
    open.model.setMenuTracking(false);
    EXPECT_EQ(changes, 1) << "nothing was put off";
}

TEST(QuickSwitcherModel, goesRoundTheScopes) {
    OpenModel open({displayOf("A", 2, 1), displayOf("B", 2, 11)});
    int changes = 0;
    open.model.onScopeChanged = [&] { ++changes; };
    ASSERT_TRUE(open.model.canCycleScope());
    EXPECT_TRUE(open.model.multipleDisplays());
    EXPECT_EQ(open.model.results().size(), 4u);
    open.model.cycleScope();
    EXPECT_EQ(keys(open.model), (Texts{"A-1", "A-2"}));
    open.model.select("A-2");
    open.model.cycleScope();
    EXPECT_EQ(keys(open.model), (Texts{"B-1", "B-2"}));
    EXPECT_EQ(open.model.selectedKey(), "B-1");
    open.model.cycleScope();
    EXPECT_FALSE(open.model.scope());
    EXPECT_EQ(open.model.results().size(), 4u);
    EXPECT_EQ(changes, 3);

    open.model.open(DisplayID{"b"}, 1280, true);
    EXPECT_EQ(keys(open.model), (Texts{"B-1", "B-2"})) << "uuids are spelled in any case";
    EXPECT_FALSE(open.model.canCycleScope());
    open.model.cycleScope();
    EXPECT_EQ(open.model.results().size(), 2u);
    EXPECT_EQ(changes, 3);

    OpenModel single({displayOf("A", 2, 1)});
    EXPECT_FALSE(single.model.canCycleScope());
    EXPECT_FALSE(single.model.multipleDisplays());
}

TEST(QuickSwitcherModel, storesTheOrderThatADragLeaves) {
    OpenModel open({displayOf("A", 3, 1), displayOf("B", 2, 11)});
    std::vector<Texts> committed;
    open.model.onOrderCommitted = [&](const Texts& displays) { committed.push_back(displays); };

    open.model.moveTile("A-1", "B-1");
    EXPECT_EQ(open.model.errorText(), "A desktop stays on its display");
    open.model.moveTile("A-1", "no such tile");
    open.model.commitOrder();
    EXPECT_TRUE(committed.empty()) << "nothing has moved";
    EXPECT_FALSE(open.model.errorText());

    open.session.logged.clear();
    open.model.moveTile("A-1", "A-3");
    EXPECT_EQ(keys(open.model), (Texts{"A-2", "A-3", "A-1", "B-1", "B-2"}));
    open.model.moveTile("B-2", "B-1");
    open.model.commitOrder();
    EXPECT_EQ(committed, (std::vector<Texts>{{"A", "B"}}));
    EXPECT_EQ(keys(open.model), (Texts{"A-2", "A-3", "A-1", "B-2", "B-1"}));
    EXPECT_EQ(open.catalog().desktops("A").front().key, "A-2");
    EXPECT_EQ(open.model.results().front()->userNumber, 1) << "numbers follow the order";
    ASSERT_FALSE(open.session.logged.empty());
    EXPECT_EQ(open.session.logged.front(),
              "Lumnara Board: saving order for display A: A-1,A-2,A-3 -> A-2,A-3,A-1");

    open.model.setQuery("desktop");
    const Texts filtered = keys(open.model);
    open.model.moveTile(filtered.front(), filtered.back());
    open.model.commitOrder();
    EXPECT_EQ(keys(open.model), filtered) << "a filtered list has no order of its own to store";
    EXPECT_EQ(committed.size(), 1u);
}

TEST(QuickSwitcherModel, dimsTheSelectedDesktop) {
    OpenModel open({displayOf("A", 2, 1)});
    open.model.select("A-2");
    open.model.toggleDimmed();
    EXPECT_TRUE(open.catalog().desktop("A-2")->record->isDimmed);
    open.model.toggleDimmed();
    EXPECT_FALSE(open.catalog().desktop("A-2")->record->isDimmed);
}

TEST(QuickSwitcherModel, tellsWhyTheDesktopsCantBeReadAndKeepsTheTiles) {
    OpenModel open({displayOf("A", 2, 1)});
    int changes = 0;
    const auto counting = open.model.changed.subscribe([&] { ++changes; });
    open.session.provider->failure =
        std::make_exception_ptr(WindowManagerError(WindowManagerError::Case::connectionLost, "i3"));
    open.session.tell();
    EXPECT_EQ(open.model.errorText(), "The connection to i3 was lost. Lumnara keeps trying to reach it.");
    EXPECT_EQ(open.model.results().size(), 2u);
    EXPECT_EQ(changes, 1);
    open.session.provider->failure = nullptr;
    open.session.tell();
    EXPECT_FALSE(open.model.errorText());
    EXPECT_EQ(changes, 2);

    open.model.close();
    open.session.provider->current.displays[0].spaces.pop_back();
    open.session.tell();
    EXPECT_EQ(changes, 2) << "a closed surface follows nothing";
}

/// What holds between any two steps.
void expectSound(const QuickSwitcherModel& model) {
    std::set<std::string> listed;
    for (const Desktop* tile : model.results()) listed.insert(tile->key);
    ASSERT_EQ(listed.size(), model.results().size());
    ASSERT_EQ(model.selectedKey().has_value(), !listed.empty());
    for (const auto& key : {model.selectedKey(), model.expandedKey(), model.renamingKey()}) {
        if (key) {
            ASSERT_TRUE(listed.contains(*key));
        }
    }
    ASSERT_GE(model.gridColumns(), 1);
    ASSERT_LE(model.gridColumns(), 6);
    for (const Desktop* tile : model.results())
        ASSERT_TRUE(!model.scope() || tile->display.uuid == *model.scope());
}

class ModelWalk {
public:
    explicit ModelWalk(unsigned seed) : random_(seed), open_({displayOf("A", 6, 1), displayOf("B", 3, 11)}) {}

    void step() {
        QuickSwitcherModel& model = open_.model;
        const auto offset = [&] { return pick(3) - 1; };
        switch (pick(16)) {
        case 0: return model.setQuery(text());
        case 1: return model.setQuery({});
        case 2: return model.moveSelection(offset(), offset());
        case 3: return model.movePage(offset());
        case 4: return model.select(key());
        case 5: return model.beginRename(key());
        case 6: return model.setRenameText(text());
        case 7:
            model.commitRename();
            ASSERT_FALSE(model.renamingKey());
            return;
        case 8: return model.toggleExpanded();
        case 9: return model.toggleDimmed();
        case 10: return model.cycleScope();
        case 11: return model.moveTile(key(), key());
        case 12: return model.commitOrder();
        case 13: return changeTheDesktops();
        case 14: return open_.session.userShows(static_cast<std::uint64_t>(1 + pick(13)));
        case 15:
            if (pick(4) == 0) model.reset();
            return;
        }
    }
    const QuickSwitcherModel& model() const { return open_.model; }

private:
    int pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    std::string key() {
        static constexpr const char* names[] = {"A-1", "A-2", "A-4", "A-6", "B-1", "B-3", "gone"};
        return names[pick(7)];
    }
    std::string text() {
        static constexpr const char* texts[] = {"m",    "Mail", "mail", "  ", "3",
                                                "next", "Wörk", "\xff", "🦊", "zzzz"};
        return texts[pick(10)];
    }
    void changeTheDesktops() {
        auto& spaces = open_.session.provider->current.displays[0].spaces;
        if (spaces.size() > 2 && pick(2) == 0)
            spaces.erase(spaces.begin() + 1 + pick(static_cast<int>(spaces.size()) - 1));
        else
            spaces = displayOf("A", 6, 1).spaces;
        open_.session.provider->current.displays[0].currentID = spaces.front().id;
        open_.session.tell();
    }

    std::mt19937 random_;
    OpenModel open_;
};

TEST(QuickSwitcherModel, staysSoundOnARandomWalk) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        ModelWalk walk(seed);
        for (int i = 0; i < 400; ++i) {
            walk.step();
            expectSound(walk.model());
            if (::testing::Test::HasFatalFailure()) FAIL() << "seed " << seed << ", step " << i;
        }
    }
}

} // namespace
} // namespace lumnara::testing
