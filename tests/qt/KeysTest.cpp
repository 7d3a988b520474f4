#include "app/qt/windows/Keys.h"

#include <QKeyEvent>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

KeyPress pressOf(int key, Qt::KeyboardModifiers held = {}, const char* text = "", quint32 scanCode = 0) {
    return keyPressOf(QKeyEvent(QEvent::KeyPress, key, held, scanCode, 0, 0, text));
}

TEST(Keys, translatesKeysAndModifiers) {
    EXPECT_EQ(pressOf(Qt::Key_Return).key, KeyCode::returnKey);
    EXPECT_EQ(pressOf(Qt::Key_Enter, Qt::KeypadModifier).key, KeyCode::keypadEnter);
    EXPECT_EQ(pressOf(Qt::Key_Backspace).key, KeyCode::deleteKey);
    EXPECT_EQ(pressOf(Qt::Key_Delete).key, KeyCode::forwardDelete);
    EXPECT_EQ(pressOf(Qt::Key_D, Qt::MetaModifier, "d"),
              (KeyPress{KeyCode::d, {.command = true}, "d", false}));
    EXPECT_EQ(pressOf(Qt::Key_1, Qt::AltModifier, "1"),
              (KeyPress{KeyCode::digit1, {.option = true}, "1", false}));
    EXPECT_EQ(pressOf(Qt::Key_W, Qt::ControlModifier | Qt::ShiftModifier).modifiers,
              (ModifierFlags{.shift = true, .control = true}));
    EXPECT_FALSE(pressOf(Qt::Key_F5).key);
    EXPECT_TRUE(keyPressOf(QKeyEvent(QEvent::KeyPress, Qt::Key_A, {}, "a", true)).repeats);
}

TEST(Keys, goesByThePlaceOfAKeyWhereItsLetterIsNotLatin) {
    // X11 and Wayland number the key that says D on a US keyboard 40, and 1 is 10.
    const KeyPress cyrillic = pressOf(0x0412, Qt::MetaModifier, "в", 40);
    EXPECT_EQ(cyrillic.key, KeyCode::d);
    EXPECT_EQ(cyrillic.text, "в");
    EXPECT_EQ(pressOf(Qt::Key_Ampersand, Qt::AltModifier, "&", 10).key, KeyCode::digit1);
    // A Latin letter stays itself wherever it is: A on a French keyboard is where Q is on a US one.
    EXPECT_EQ(pressOf(Qt::Key_A, {}, "a", 24).key, KeyCode::a);
    EXPECT_FALSE(pressOf(Qt::Key_Odiaeresis, {}, "ö", 47).key);
}

} // namespace
} // namespace lumnara
