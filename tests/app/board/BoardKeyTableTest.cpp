#include "app/board/BoardKeyTable.h"

#include "app/board/QuickSwitcherModel.h"
#include "tests/app/ScriptedSession.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

using EffectKind = KeyEffect::Kind;

constexpr ModifierFlags none{};
constexpr ModifierFlags shift{.shift = true};
constexpr ModifierFlags control{.control = true};
constexpr ModifierFlags option{.option = true};
constexpr ModifierFlags command{.command = true};

KeyPress key(KeyCode code, ModifierFlags modifiers = none, std::string text = {}) {
    return {code, modifiers, std::move(text), false};
}
KeyPress typed(std::string text, ModifierFlags modifiers = none) {
    return {std::nullopt, modifiers, std::move(text), false};
}

/// A model over four desktops of display A, the second named Mail, and two of B.
class KeyTable : public ::testing::Test {
protected:
    KeyTable()
        : session({displayOf("A", 4, 1), displayOf("B", 2, 11)}),
          model(session.start().catalog(), session.settings) {
        session.catalog().rename("A-2", "Mail");
        model.open(DisplayID{"A"}, 1280, false);
        model.reset();
    }
    EffectKind press(const KeyPress& press) { return applyKey(press, model).kind; }
    /// The Space key of the desktop that the key switches to; empty for any other effect.
    std::string switchesTo(const KeyPress& press) {
        const KeyEffect effect = applyKey(press, model);
        return effect.desktop ? effect.desktop->spaceKey : std::string();
    }

    ScriptedSession session;
    QuickSwitcherModel model;
};

TEST_F(KeyTable, escapeStepsBackOutOfTheBoard) {
    model.toggleExpanded();
    model.beginRename("A-1");
    model.setRenameText("Post");
    EXPECT_EQ(press(key(KeyCode::escape, none, "\x1b")), EffectKind::done);
    EXPECT_FALSE(model.renamingKey());
    EXPECT_TRUE(model.expandedKey());
    EXPECT_EQ(model.results().front()->displayName(), "Desktop 1");
    EXPECT_EQ(press(key(KeyCode::escape)), EffectKind::done);
    EXPECT_FALSE(model.expandedKey());
    EXPECT_EQ(press(key(KeyCode::escape)), EffectKind::closesBoard);
}

TEST_F(KeyTable, returnSwitchesOrRenames) {
    for (const KeyCode enter : {KeyCode::returnKey, KeyCode::keypadEnter}) {
        model.reset();
        model.select("A-2");
        EXPECT_EQ(switchesTo(key(enter, none, "\r")), "A-2");
        EXPECT_EQ(press(key(enter, command, "\r")), EffectKind::done);
        EXPECT_EQ(model.renamingKey(), "A-2");
        model.setRenameText(enter == KeyCode::returnKey ? "Post" : "Mail");
        EXPECT_EQ(press(key(enter)), EffectKind::done);
        EXPECT_FALSE(model.renamingKey());
    }
    EXPECT_EQ(session.catalog().desktop("A-2")->displayName(), "Mail");

    model.setQuery("qqqq");
    EXPECT_EQ(press(key(KeyCode::returnKey)), EffectKind::done) << "nothing is selected";
    EXPECT_EQ(press(key(KeyCode::returnKey, command)), EffectKind::done);
    EXPECT_FALSE(model.renamingKey());
}

TEST_F(KeyTable, movesWithArrowsAndTheirNeighbours) {
    ASSERT_EQ(model.gridColumns(), 5); // the sixth tile stands alone
    const std::pair<KeyCode, std::string> steps[] = {
        {KeyCode::right, "A-2"}, {KeyCode::right, "A-3"},  {KeyCode::left, "A-2"},
        {KeyCode::up, "A-2"},    {KeyCode::down, "B-2"},   {KeyCode::home, "A-1"},
        {KeyCode::end, "B-2"},   {KeyCode::pageUp, "A-1"}, {KeyCode::pageDown, "B-2"},
    };
    for (const auto& [code, selected] : steps) {
        EXPECT_EQ(press(key(code)), EffectKind::done);
        EXPECT_EQ(model.selectedKey(), selected) << static_cast<int>(code);
    }
    model.beginRename("A-1");
    for (const KeyCode code :
         {KeyCode::left, KeyCode::right, KeyCode::home, KeyCode::end, KeyCode::pageDown, KeyCode::tab})
        EXPECT_EQ(press(key(code)), EffectKind::fallsThrough) << static_cast<int>(code);
    EXPECT_EQ(press(key(KeyCode::up)), EffectKind::done);
    EXPECT_EQ(press(key(KeyCode::down)), EffectKind::done);
    EXPECT_EQ(model.renamingKey(), "A-1");
}

TEST_F(KeyTable, tabGoesRoundTheScopesWhereItCan) {
    EXPECT_EQ(press(key(KeyCode::tab, none, "\t")), EffectKind::done);
    EXPECT_EQ(model.scope(), "A");
    model.open(DisplayID{"A"}, 1280, true);
    EXPECT_EQ(press(key(KeyCode::tab, none, "\t")), EffectKind::fallsThrough);
    EXPECT_EQ(model.query(), "");
}

TEST_F(KeyTable, spaceEnlargesOrTypes) {
    EXPECT_EQ(press(key(KeyCode::space, none, " ")), EffectKind::done);
    EXPECT_EQ(model.expandedKey(), model.selectedKey());
    EXPECT_EQ(press(key(KeyCode::space, none, " ")), EffectKind::done);
    EXPECT_FALSE(model.expandedKey());
    press(typed("m"));
    EXPECT_EQ(press(key(KeyCode::space, none, " ")), EffectKind::done);
    EXPECT_EQ(model.query(), "m ");
    EXPECT_FALSE(model.expandedKey());
    model.reset();
    model.beginRename("A-1");
    EXPECT_EQ(press(key(KeyCode::space, none, " ")), EffectKind::done);
    EXPECT_EQ(model.renameText(), " ");
}

TEST_F(KeyTable, deleteTakesOneCharacter) {
    EXPECT_EQ(press(key(KeyCode::deleteKey, none, "\b")), EffectKind::fallsThrough) << "nothing to delete";
    model.setQuery("ma👨‍👩‍👧");
    EXPECT_EQ(press(key(KeyCode::deleteKey, none, "\b")), EffectKind::done);
    EXPECT_EQ(model.query(), "ma");
    model.beginRename("A-2");
    EXPECT_EQ(press(key(KeyCode::deleteKey, command)), EffectKind::done);
    EXPECT_EQ(model.renameText(), "Mai");
    EXPECT_EQ(model.query(), "ma");
}

TEST_F(KeyTable, commandDeleteClearsTheQueryWhereNothingCanBeDeleted) {
    model.setQuery("mail");
    ASSERT_EQ(model.selectedKey(), "A-2");
    EXPECT_EQ(press(key(KeyCode::deleteKey, command)), EffectKind::done);
    EXPECT_EQ(model.query(), "mail") << "this desktop could be deleted";

    auto& displays = session.provider->current.displays;
    displays[0].spaces[1].kind = SpaceKind::fullscreen;
    session.tell();
    model.setQuery("mail");
    EXPECT_EQ(press(key(KeyCode::deleteKey, command)), EffectKind::done);
    EXPECT_EQ(model.query(), "") << "a full-screen tile";

    displays[1].spaces.pop_back();
    session.tell();
    model.select("B-1");
    ASSERT_EQ(model.selectedKey(), "B-1");
    EXPECT_FALSE(model.selectionCanBeDeleted()) << "the only desktop of its display";

    model.setQuery("qqqq");
    EXPECT_EQ(press(key(KeyCode::deleteKey, command)), EffectKind::done);
    EXPECT_EQ(model.query(), "") << "no tile at all";
    EXPECT_EQ(session.catalog().desktops().size(), 5u);
}

TEST_F(KeyTable, knowsItsCommands) {
    model.select("A-2");
    EXPECT_EQ(press(key(KeyCode::d, command, "d")), EffectKind::done);
    EXPECT_TRUE(session.catalog().desktop("A-2")->record->isDimmed);
    EXPECT_EQ(press(key(KeyCode::a, command, "a")), EffectKind::done);
    EXPECT_EQ(press(key(KeyCode::w, command, "w")), EffectKind::closesBoard);
    EXPECT_EQ(press(key(KeyCode::l, command, "l")), EffectKind::opensMenu);
    EXPECT_EQ(press(key(KeyCode::contextMenu)), EffectKind::opensMenu);
    EXPECT_EQ(press(key(KeyCode::x, command, "x")), EffectKind::fallsThrough);
    EXPECT_EQ(model.query(), "");
}

TEST_F(KeyTable, digitsGoToATileOrAreTyped) {
    EXPECT_EQ(switchesTo(key(KeyCode::digit2, none, "2")), "A-2");
    EXPECT_EQ(switchesTo(key(KeyCode::digit5, shift, "5")), "B-1") << "where the layout has digits on Shift";
    EXPECT_EQ(press(key(KeyCode::digit2, command, "2")), EffectKind::fallsThrough);
    EXPECT_EQ(press(key(KeyCode::digit2, control, "2")), EffectKind::fallsThrough);
    EXPECT_EQ(press(key(KeyCode::digit7, none, "7")), EffectKind::done);
    EXPECT_EQ(model.query(), "7") << "there is no seventh tile";
    EXPECT_EQ(press(key(KeyCode::digit2, none, "2")), EffectKind::done);
    EXPECT_EQ(model.query(), "72") << "the query stands";

    model.reset();
    EXPECT_EQ(press(key(KeyCode::digit0, none, "0")), EffectKind::done);
    EXPECT_EQ(model.query(), "0");

    model.reset();
    model.beginRename("A-1");
    EXPECT_EQ(press(key(KeyCode::digit2, none, "2")), EffectKind::done);
    EXPECT_EQ(model.renameText(), "2") << "a name may hold digits";
}

TEST_F(KeyTable, typesWhatIsPrintable) {
    for (const char* text : {"m", "É", "日本", "@"}) {
        model.reset();
        EXPECT_EQ(press(typed(text)), EffectKind::done);
        EXPECT_EQ(model.query(), text);
        EXPECT_EQ(press(typed(text, option)), EffectKind::done);
        EXPECT_EQ(model.query(), std::string(text) + text);
    }
    model.reset();
    for (const char* text : {"", "\n", "a\x7f", "\xc2\x85", "\x01"})
        EXPECT_EQ(press(typed(text)), EffectKind::fallsThrough) << ::testing::PrintToString(text);
    EXPECT_EQ(press(typed("m", control)), EffectKind::fallsThrough);
    EXPECT_EQ(press(typed("m", command)), EffectKind::fallsThrough);
    EXPECT_EQ(model.query(), "");
    model.beginRename("A-2");
    press(typed("s"));
    EXPECT_EQ(model.renameText(), "Mails");
    EXPECT_EQ(model.query(), "");
}

} // namespace
} // namespace lumnara::testing
