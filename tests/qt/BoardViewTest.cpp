#include "tests/qt/OpenBoard.h"

#include "app/board/BoardKeyTable.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QMenu>
#include <gtest/gtest.h>
#include <random>

namespace lumnara::testing {
namespace {

using Keys = std::vector<std::string>;

std::vector<std::string> numbered(int count) {
    std::vector<std::string> names;
    for (int number = 1; number <= count; ++number) names.push_back("Name " + std::to_string(number));
    return names;
}

TEST(BoardView, forwardsKeysAndWhatAnInputMethodTypes) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    board.key(Qt::Key_Alt);
    board.key(Qt::Key_Super_L);
    board.key(Qt::Key_A, "a");
    board.key(Qt::Key_Tab, "\t");
    board.key(Qt::Key_Backtab, "", Qt::ShiftModifier);
    QInputMethodEvent composed("", {});
    composed.setCommitString("é");
    QCoreApplication::sendEvent(&board.view, &composed);

    ASSERT_EQ(board.surface.keys.size(), 4u);
    EXPECT_EQ(board.surface.keys[0], (KeyPress{KeyCode::a, {}, "a", false}));
    EXPECT_EQ(board.surface.keys[1].key, KeyCode::tab);
    EXPECT_EQ(board.surface.keys[2].modifiers, (ModifierFlags{.shift = true}));
    EXPECT_EQ(board.surface.keys[3], (KeyPress{{}, {}, "é", false}));
}

TEST(BoardView, showsWhatAnInputMethodIsComposing) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    const QImage before = board.drawn();
    QInputMethodEvent composing("に", {});
    QCoreApplication::sendEvent(&board.view, &composing);
    EXPECT_NE(board.drawn(), before);
    QInputMethodEvent ended("", {});
    QCoreApplication::sendEvent(&board.view, &ended);
    EXPECT_EQ(board.drawn(), before);
    EXPECT_TRUE(board.surface.keys.empty());
}

TEST(BoardView, tellsClicksApart) {
    OpenBoard board({{"Mail", "Code"}, {"Music"}});
    board.click(board.tile(1).center());
    EXPECT_EQ(board.surface.switched, Keys{board.keys()[1]});

    // Between two tiles, beside the last and on the query nothing was meant; on a tile's edge the tile was.
    board.click(board.tile(0).center() + QPointF(board.tile(0).width() / 2 + 10, 0));
    board.click(board.tile(2).center() + QPointF(board.tile(2).width() / 2 + 10, 0));
    board.click(board.tile(0).topLeft() + QPointF(120, -70));
    EXPECT_EQ(board.surface.closed, 0);
    board.click(board.tile(0).topLeft() + QPointF(1, 1));
    EXPECT_EQ(board.surface.switched.size(), 2u);

    board.click({5, 5});
    EXPECT_EQ(board.surface.closed, 1);

    // Let go elsewhere, a press is taken back.
    board.key(Qt::Key_X);
    board.model.setQuery("m");
    board.press(board.tile(0).center());
    board.move({5, 5}, true);
    board.release({5, 5});
    EXPECT_EQ(board.surface.switched.size(), 2u);
    EXPECT_EQ(board.surface.closed, 1);
    board.model.setQuery({});

    // The name of the listed displays goes on to the next.
    board.click(QPointF(board.tile(0).left() + 4 * 216 - 40, board.tile(0).top() - 70));
    EXPECT_EQ(board.model.scope(), "display-1");

    board.click(board.tile(1).center(), Qt::RightButton);
    EXPECT_EQ(board.surface.menus, Keys{board.keys()[1]});
    EXPECT_EQ(board.surface.switched.size(), 2u);
}

TEST(BoardView, opensTheMenuOfATile) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    using Kind = DesktopMenuItem::Kind;
    DesktopMenuItem with = DesktopMenuItem::line(Kind::submenu, "Link with");
    with.children = {DesktopMenuItem::line(Kind::link, "Chat")};
    board.view.openMenu(board.keys()[1], {DesktopMenuItem::line(Kind::rename, "Rename…"), with});
    board.settle();
    EXPECT_EQ(board.surface.menuTracking, std::vector<bool>{true});
    const auto menus = board.view.findChildren<QMenu*>();
    ASSERT_EQ(menus.size(), 2);
    const QRectF tile = board.tile(1).translated(board.view.mapToGlobal(QPointF()));
    EXPECT_TRUE(tile.contains(menus[0]->pos()));
    ASSERT_TRUE(menus[0]->activeAction()) << "opened without the pointer, the first line is ready";
    EXPECT_EQ(menus[0]->activeAction()->text(), "Rename…");

    int closed = 0;
    board.view.onMenuClosed = [&] { ++closed; };
    menus[1]->actions().front()->trigger();
    ASSERT_EQ(board.surface.chosen.size(), 1u);
    EXPECT_EQ(board.surface.chosen[0].title, "Chat");
    board.view.closed();
    board.settle();
    EXPECT_EQ(board.surface.menuTracking, (std::vector<bool>{true, false}));
    EXPECT_EQ(closed, 1);
    board.view.openMenu("no such tile", {});
    EXPECT_EQ(board.surface.menuTracking.size(), 2u);
}

TEST(BoardView, clicksTheFullSizeTileOrPutsItAway) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    board.model.toggleExpanded();
    board.click({5, 5});
    EXPECT_FALSE(board.model.expandedKey());
    EXPECT_EQ(board.surface.closed, 0);
    board.model.toggleExpanded();
    board.click({640, 380});
    EXPECT_EQ(board.surface.switched, Keys{board.keys()[0]});
}

TEST(BoardView, reportsTheTileUnderThePointer) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    board.move(board.tile(1).center());
    board.move({5, 5});
    board.press(board.tile(0).center());
    board.move(board.tile(0).center() + QPointF(1, 1), true);
    board.release(board.tile(0).center());
    const std::vector<std::optional<std::string>> expected = {board.keys()[1], std::nullopt};
    EXPECT_EQ(board.surface.hovered, expected);
}

TEST(BoardView, dragsATileToAnotherPlace) {
    OpenBoard board({{"Mail", "Code", "Music", "Notes"}});
    const Keys before = board.keys();
    board.press(board.tile(0).center());
    board.move(board.tile(0).center() + QPointF(4, 0), true); // a hand that trembles
    EXPECT_EQ(board.keys(), before);
    for (int step = 1; step <= 20; ++step)
        board.move(board.tile(0).center() + (board.tile(2).center() - board.tile(0).center()) * (step / 20.0),
                   true);
    board.loop.advance(0.03);
    const QImage gliding = board.drawn();
    board.release(board.tile(2).center());
    EXPECT_EQ(board.keys(), (Keys{before[1], before[2], before[0], before[3]}));
    Keys stored;
    for (const Desktop& desktop : board.catalog.desktops()) stored.push_back(desktop.key);
    EXPECT_EQ(stored, board.keys());
    EXPECT_TRUE(board.surface.switched.empty());

    // At rest the tiles stand as if they had always been there.
    board.settle();
    const QImage rested = board.shown();
    EXPECT_NE(rested, gliding);
    EXPECT_FALSE(board.loop.hasTimer()) << "no frames are drawn any more";
    board.open();
    board.model.select(before[0]);
    board.settle();
    EXPECT_EQ(board.shown(), rested);
}

TEST(BoardView, aTileDraggedBeyondTheSurfaceIsTheOthersBusiness) {
    OpenBoard board({{"Mail", "Code", "Music"}});
    const Keys before = board.keys();
    const QImage rested = board.shown();
    board.press(board.tile(1).center());
    board.move(board.tile(1).center() + QPointF(30, 0), true);
    board.move({1400, 300}, true);
    board.move({1410, 300}, true);
    board.loop.advance(0.2);
    board.move(board.tile(1).center(), true);
    board.move({-20, 300}, true);
    board.release({-20, 300});
    const std::string key = before[1];
    EXPECT_EQ(board.surface.dragged,
              (Keys{"across " + key, "across " + key, "back " + key, "across " + key, "dropped " + key}));
    const QPointF origin = board.view.mapToGlobal(QPointF(1400, 300));
    EXPECT_EQ(board.surface.draggedTo[0], (Point{origin.x(), origin.y()}));
    EXPECT_EQ(board.keys(), before);
    board.settle();
    EXPECT_EQ(board.shown(), rested) << "it has glided home";
    EXPECT_EQ(board.view.tileAt({board.view.mapToGlobal(board.tile(2).center()).x(),
                                 board.view.mapToGlobal(board.tile(2).center()).y()}),
              before[2]);
}

TEST(BoardView, dragsNothingUnderAQueryOrOverDisplays) {
    OpenBoard board({{"Mail", "Code"}, {"Music", "Mood"}});
    const auto drag = [&board](int from, int to) {
        board.press(board.tile(from).center());
        board.move(board.tile(from).center() + QPointF(30, 0), true);
        board.move(board.tile(to).center(), true);
        board.release(board.tile(to).center());
        board.settle();
    };
    const Keys before = board.keys();
    drag(0, 2);
    EXPECT_EQ(board.keys(), before);
    EXPECT_TRUE(board.surface.switched.empty());

    board.model.setQuery("m");
    const Keys found = board.keys();
    drag(0, 1);
    EXPECT_EQ(board.keys(), found);
    board.model.setQuery({});
    EXPECT_EQ(board.keys(), before);
}

TEST(BoardView, scrollsTheSelectionIntoView) {
    OpenBoard board({numbered(60)});
    EXPECT_LT(OpenBoard::ring(board.shown()).top(), 200);
    board.model.selectLast();
    board.settle();
    const QRect last = OpenBoard::ring(board.shown());
    EXPECT_EQ(last.height(), OpenBoard::ring(board.drawn()).height());
    EXPECT_NEAR(last.height(), board.tile(0).height() + 9, 3) << "the whole tile is to be seen";
    EXPECT_LT(last.bottom(), 800 - 60) << "and not over the hints";

    // The wheel scrolls without selecting; what the pointer selects stays where it is.
    const auto selected = board.model.selectedKey();
    board.wheel({640, 400}, 100);
    board.settle();
    EXPECT_EQ(board.model.selectedKey(), selected);
    EXPECT_TRUE(OpenBoard::ring(board.shown()).isEmpty());
    const QPointF inLowestRow(board.tile(0).center().x(), 800 - 90);
    board.surface.onHoverTile = [&board](const std::optional<std::string>& key, Point) {
        if (key) board.model.select(*key);
    };
    const QImage before = board.shown();
    board.move(inLowestRow);
    board.settle();
    const QRect firstRow(0, 150, 1280, 150);
    EXPECT_EQ(board.shown().copy(firstRow), before.copy(firstRow));
    EXPECT_NE(board.model.selectedKey(), selected);

    // The keyboard leads back to that tile later, from afar.
    const auto hovered = board.model.selectedKey();
    board.model.selectLast();
    board.settle();
    board.model.select(*hovered);
    board.settle();
    EXPECT_GT(OpenBoard::ring(board.shown()).bottom(), 140 + board.tile(0).height()) << "a whole tile";

    board.model.reset();
    board.settle();
    EXPECT_LT(OpenBoard::ring(board.shown()).top(), 200);
}

/// Only what changed is drawn anew; the screen has to show the same as a whole drawing, whatever is done.
TEST(BoardView, drawsEverythingThatChanged) {
    OpenBoard board({numbered(14), {"", "Films", "سطح المكتب"}}, {1000, 640});
    std::mt19937 random(7);
    board.surface.onKey = [&board](const KeyPress& press) {
        applyKey(press, board.model);
        return true;
    };
    const std::vector<std::pair<int, QString>> keys = {
        {Qt::Key_Right, ""}, {Qt::Key_Left, ""},   {Qt::Key_Down, ""},      {Qt::Key_Up, ""},
        {Qt::Key_N, "n"},    {Qt::Key_1, "1"},     {Qt::Key_Backspace, ""}, {Qt::Key_Space, " "},
        {Qt::Key_Tab, "\t"}, {Qt::Key_Escape, ""}, {Qt::Key_End, ""},
    };
    for (int step = 0; step < 150; ++step) {
        const auto& [key, text] = keys[random() % keys.size()];
        board.key(key, text, random() % 8 == 0 ? Qt::MetaModifier : Qt::NoModifier);
        if (random() % 6 == 0) board.wheel({500, 400}, random() % 2 ? 1 : -1);
        board.settle();
        ASSERT_EQ(board.shown(), board.drawn()) << "step " << step << ", key " << key;
    }
}

TEST(BoardView, tellsOncePerOpeningThatItIsPainted) {
    OpenBoard board(Displays{{"Mail", "Code"}});
    int painted = 0;
    board.view.onPainted = [&painted] { ++painted; };
    board.model.moveSelection(1, 0);
    board.settle();
    EXPECT_EQ(painted, 0);
    board.view.closed();
    board.view.hide();
    board.open();
    EXPECT_EQ(painted, 1);
}

} // namespace
} // namespace lumnara::testing
