#include "app/qt/menu/DesktopMenuView.h"

#include "tests/qt/OpenBoard.h"
#include "tests/qt/Pictures.h"

#include <QApplication>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

QAction* lineOf(QMenu& menu, const QString& title) {
    for (QAction* action : menu.actions())
        if (action->text() == title) return action;
    ADD_FAILURE() << "no line " << title.toStdString();
    return nullptr;
}

TEST(DesktopMenuView, drawsTheLinesAndForwardsTheChosenOne) {
    OpenBoard board({{"Mail", "Q & A", ""}, {"Mail", ""}});
    board.catalog.setLinkMode(DisplayLinkMode::linked);
    board.catalog.setColor("2", "#C04070");
    std::vector<DesktopMenuItem> chosen;
    const std::function<void(const DesktopMenuItem&)> onChosen = [&](const DesktopMenuItem& item) {
        chosen.push_back(item);
    };
    QMenu menu;
    fillMenu(menu, desktopMenu(board.catalog), onChosen);
    QMenu* links = lineOf(menu, "Links")->menu();
    lineOf(*lineOf(*links, "Link with")->menu(), "Mail")->trigger();
    lineOf(menu, "Q && A")->trigger();
    const QAction* mode = lineOf(*links, "Link Displays");
    EXPECT_TRUE(mode->isCheckable() && mode->isChecked());
    EXPECT_FALSE(lineOf(*links, "Mail")->isEnabled()) << "tells whose links they are";
    ASSERT_EQ(chosen.size(), 2u);
    EXPECT_EQ(chosen[0].request->spaceKey, "4");
    EXPECT_EQ(chosen[1].desktop->spaceKey, "2");

    const QImage loose = lineOf(menu, "Mail")->icon().pixmap(32).toImage();
    board.catalog.link("1", "4");
    fillMenu(menu, desktopMenu(board.catalog), onChosen);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_NE(lineOf(menu, "Mail")->icon().pixmap(32).toImage(), loose);
    EXPECT_EQ(menu.findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly).size(), 1)
        << "old submenus don't pile up";
    for (const bool dark : {false, true}) {
        menu.setPalette(panelPalette(dark));
        savePicture(menu, dark ? "menu-dark" : "menu-light");
    }
}

} // namespace
} // namespace lumnara::testing
