#include "app/menubar/DesktopMenu.h"

#include "tests/app/ScriptedSession.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

using LineKind = DesktopMenuItem::Kind;

/// A line each: "# header", "* current", "- dimmed", "! message", "---", and other titles as they are.
Texts drawn(const std::vector<DesktopMenuItem>& menu) {
    Texts lines;
    for (const DesktopMenuItem& item : menu) {
        switch (item.kind) {
        case LineKind::header: lines.push_back("# " + item.title); break;
        case LineKind::message: lines.push_back("! " + item.title); break;
        case LineKind::separator: lines.push_back("---"); break;
        case LineKind::desktop:
            lines.push_back((item.isCurrent ? "* " : item.isDimmed ? "- " : "  ") + item.title);
            break;
        case LineKind::openBoard:
        case LineKind::quit: lines.push_back(item.title); break;
        }
        EXPECT_EQ(item.desktop.has_value(), item.kind == LineKind::desktop);
    }
    return lines;
}

TEST(DesktopMenu, listsTheDesktopsByDisplay) {
    ScriptedSession session({displayOf("A", 2, 1), displayOf("B", 2, 11)});
    session.start();
    session.catalog().rename("A-2", "Mail");
    session.catalog().setDimmed("B-2", true);
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              (Texts{"# Monitor A", "* Desktop 1", "  Mail", "---", "# Monitor B", "* Desktop 1",
                     "- Desktop 2", "---", "Open Board", "Quit"}));

    session.provider->current.displays.pop_back();
    session.tell();
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              (Texts{"* Desktop 1", "  Mail", "---", "Open Board", "Quit"}));
}

TEST(DesktopMenu, colorsWhatTheUserHasNamed) {
    ScriptedSession session({displayOf("A", 3, 1)});
    session.start();
    session.catalog().rename("A-1", "Mail");
    session.catalog().rename("A-2", "MAIN");
    session.catalog().setColor("A-2", "#123456");
    const auto menu = desktopMenu(session.catalog());
    ASSERT_TRUE(menu[0].color);
    EXPECT_EQ(menu[0].color->size(), 7u) << *menu[0].color;
    EXPECT_EQ(menu[1].color, "#123456");
    EXPECT_FALSE(menu[2].color);
}

TEST(DesktopMenu, saysWhyTheDesktopsCantBeRead) {
    ScriptedSession session({displayOf("A", 1, 1)});
    session.provider->failure = std::make_exception_ptr(SpaceKitError::privateAPIUnavailable());
    session.start();
    const std::string sentence = "This macOS build does not expose the desktop APIs Lumnara needs.";
    EXPECT_EQ(drawn(desktopMenu(session.catalog())), (Texts{"! " + sentence, "---", "Open Board", "Quit"}));
    EXPECT_EQ(trayToolTip(session.catalog()), sentence);

    session.provider->failure = nullptr;
    session.tell();
    session.provider->failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    session.tell();
    EXPECT_EQ(drawn(desktopMenu(session.catalog())), (Texts{"! Could not read the list of desktops.", "---",
                                                            "* Desktop 1", "---", "Open Board", "Quit"}))
        << "what was read before still stands";
}

TEST(TrayToolTip, namesTheFocusedDesktop) {
    ScriptedSession session({displayOf("A", 2, 1), displayOf("B", 2, 11)});
    session.start();
    session.catalog().rename("B-1", "Mail");
    EXPECT_EQ(trayToolTip(session.catalog()), "Desktop 1 (Monitor A)");
    session.provider->menuBar = DisplayID{"B"};
    EXPECT_EQ(trayToolTip(session.catalog()), "Mail (Monitor B)");
    session.provider->current.displays.erase(session.provider->current.displays.begin());
    session.tell();
    EXPECT_EQ(trayToolTip(session.catalog()), "Mail");
}

} // namespace
} // namespace lumnara::testing
