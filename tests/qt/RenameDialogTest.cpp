#include "app/qt/menu/RenameDialog.h"

#include "tests/qt/OpenBoard.h"
#include "tests/qt/Pictures.h"

#include <QApplication>
#include <QKeyEvent>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class RenameDialogTest : public ::testing::Test {
protected:
    QLineEdit& field() { return *dialog.findChild<QLineEdit*>(); }
    void enter(const QString& text) {
        field().selectAll();
        field().insert(text);
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(&dialog, &enter);
    }
    /// The texts that can be seen, but for the field's.
    QStringList told() {
        QStringList texts;
        for (const QLabel* label : dialog.findChildren<QLabel*>())
            if (label->isVisible()) texts << label->text();
        return texts;
    }

    OpenBoard board{{{"Mail", "Music", ""}}};
    RenameDialog dialog{board.catalog};
};

TEST_F(RenameDialogTest, renamesAndClears) {
    board.catalog.setColor("1", "#C04070");
    dialog.present(*board.catalog.desktop("1"));
    EXPECT_EQ(field().text(), "Mail");
    EXPECT_EQ(field().selectedText(), "Mail");
    savePicture(dialog, "rename");
    enter("  Post ");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(board.catalog.desktop("1")->displayName(), "Post");

    dialog.present(*board.catalog.desktop("1"));
    enter("  ");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(board.catalog.desktop("1")->displayName(), "Desktop 1");
    EXPECT_EQ(board.catalog.desktop("1")->record->color, "#C04070");

    dialog.present(*board.catalog.desktop("3"));
    EXPECT_EQ(field().text(), "") << "a number is no name";
    enter("");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_FALSE(board.catalog.desktop("3")->record);
}

TEST_F(RenameDialogTest, keepsWhatIsRefusedAndSaysWhy) {
    dialog.present(*board.catalog.desktop("1"));
    enter("music");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(field().text(), "music");
    EXPECT_TRUE(told().contains("Another desktop on this display is already called \"Music\"."));
    EXPECT_EQ(board.catalog.desktop("1")->displayName(), "Mail");
    for (const bool dark : {false, true}) {
        dialog.setPalette(panelPalette(dark));
        enter("music");
        savePicture(dialog, dark ? "rename-refused-dark" : "rename-refused-light");
    }

    board.provider.current.displays.front().spaces.erase(
        board.provider.current.displays.front().spaces.begin());
    board.catalog.refresh();
    enter("Post");
    EXPECT_TRUE(told().contains("That desktop is not there any more."));
    dialog.present(*board.catalog.desktop("2"));
    EXPECT_EQ(told().size(), 2) << "the old reason is gone";
    dialog.reject();
    EXPECT_EQ(board.catalog.desktop("2")->displayName(), "Music");
}

} // namespace
} // namespace lumnara::testing
