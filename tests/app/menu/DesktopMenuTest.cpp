#include "app/menu/DesktopMenu.h"

#include "app/menu/DesktopMenuCommands.h"
#include "tests/app/ScriptedSession.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

using LineKind = DesktopMenuItem::Kind;

std::string drawn(const DesktopMenuItem& item) {
    switch (item.kind) {
    case LineKind::header: return "# " + item.title;
    case LineKind::message: return "! " + item.title;
    case LineKind::separator: return "---";
    case LineKind::submenu: return item.title + " >";
    case LineKind::desktop:
        return (item.isCurrent  ? "* "
                : item.isDimmed ? "- "
                                : "  ") +
               item.title + (item.isLinked ? " &" : "");
    case LineKind::linkMode: return (item.isChecked ? "[x] " : "[ ] ") + item.title;
    default: return item.title;
    }
}

/// A line each, those of a submenu with "  " in front.
Texts drawn(const std::vector<DesktopMenuItem>& menu) {
    Texts lines;
    for (const DesktopMenuItem& item : menu) {
        lines.push_back(drawn(item));
        for (const std::string& child : drawn(item.children)) lines.push_back("  " + child);
        EXPECT_EQ(item.desktop.has_value(), item.kind == LineKind::desktop || item.kind == LineKind::rename);
        EXPECT_EQ(item.request.has_value(), item.kind == LineKind::link);
    }
    return lines;
}

/// What every menu ends with.
Texts withEnd(Texts lines) {
    lines.insert(lines.end(), {"Open Board", "Settings…", "Quit"});
    return lines;
}

/// The lines of the submenu "Links", or nothing when there is none.
Texts linksOf(const std::vector<DesktopMenuItem>& menu) {
    for (const DesktopMenuItem& item : menu)
        if (item.title == "Links") return drawn(item.children);
    return {};
}

/// The line of that title, but for those that switch.
std::optional<DesktopMenuItem> findLine(const std::vector<DesktopMenuItem>& menu, const std::string& title) {
    for (const DesktopMenuItem& item : menu) {
        if (item.title == title && item.kind != LineKind::desktop) return item;
        if (auto child = findLine(item.children, title)) return child;
    }
    return std::nullopt;
}

/// Throws when there is no such line.
DesktopMenuItem lineOf(const std::vector<DesktopMenuItem>& menu, const std::string& title) {
    return findLine(menu, title).value();
}

TEST(DesktopMenu, listsTheDesktopsByDisplay) {
    ScriptedSession session({displayOf("A", 2, 1), displayOf("B", 2, 11)});
    session.start();
    session.catalog().rename("A-2", "Mail");
    session.catalog().setDimmed("B-2", true);
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              withEnd({"# Monitor A", "* Desktop 1", "  Mail", "---", "# Monitor B", "* Desktop 1",
                       "- Desktop 2", "---", "Rename Desktop…", "Links >", "  [ ] Link Displays", "---"}));
    session.provider->menuBar = DisplayID{"B"};
    EXPECT_EQ(lineOf(desktopMenu(session.catalog()), "Rename Desktop…").desktop, session.desktop("B-1"))
        << "the focused one is renamed";

    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.provider->current.displays.pop_back();
    session.tell();
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              withEnd({"* Desktop 1", "  Mail", "---", "Rename Desktop…", "---"}));
}

TEST(DesktopMenu, hasNoLinksWhereTheScreensShareTheDesktops) {
    ScriptedSession session({displayOf("Main", 2, 1)});
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              withEnd({"* Desktop 1", "  Desktop 2", "---", "Rename Desktop…", "---"}));
}

TEST(DesktopMenu, offersLinksWithTheSameNameFirst) {
    ScriptedSession session(twoDisplays());
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    session.provider->current.displays.back().spaces.emplace_back().kind = SpaceKind::fullscreen;
    session.tell();
    session.catalog().rename("A-1", "Mail");
    session.catalog().rename("B-2", "mail");
    EXPECT_EQ(linksOf(desktopMenu(session.catalog())),
              (Texts{"[x] Link Displays", "---", "# Mail", "Link with >", "  mail", "  Desktop 1", "---",
                     "Link All of the Same Name"}));

    DesktopMenuCommands commands(session.state());
    EXPECT_TRUE(commands.carryOut(lineOf(desktopMenu(session.catalog()), "mail")));
    session.loop.runUntilIdle();
    EXPECT_EQ(session.notices.back().text, "“Mail” is now on both screens.");
    EXPECT_EQ(session.logged.front(), "Lumnara link request: with for Mail");
    EXPECT_EQ(linksOf(desktopMenu(session.catalog())),
              (Texts{"[x] Link Displays", "---", "# Mail", "Unlink"}));
    const Texts whole = drawn(desktopMenu(session.catalog()));
    EXPECT_EQ(std::ranges::count(whole, "* Mail &") + std::ranges::count(whole, "  Mail &"), 2);
    session.userShows(2);
    EXPECT_EQ(linksOf(desktopMenu(session.catalog())),
              (Texts{"[x] Link Displays", "---", "# Desktop 2", "Link with >", "  Desktop 1"}))
        << "a linked desktop isn't taken out of its link";
    session.userShows(1);

    EXPECT_TRUE(commands.carryOut(lineOf(desktopMenu(session.catalog()), "Unlink")));
    EXPECT_TRUE(commands.carryOut(lineOf(desktopMenu(session.catalog()), "Link Displays")));
    session.loop.runUntilIdle();
    EXPECT_EQ(session.notices.back().text, "“Mail” is back to one screen.");
    EXPECT_EQ(linksOf(desktopMenu(session.catalog())), (Texts{"[ ] Link Displays"}));
    EXPECT_EQ(session.defaults.value("displays.linkMode"), DefaultsValue("independent"));
}

TEST(DesktopMenu, tellsWhatCameOfALink) {
    ScriptedSession session({displayOf("A", 2, 1), displayOf("B", 2, 11), displayOf("C", 1, 21)});
    session.settings.displayLinkMode.set(DisplayLinkMode::linked);
    session.start();
    DesktopMenuCommands commands(session.state());
    for (const char* key : {"A-1", "B-1"}) session.catalog().rename(key, "Mail");
    EXPECT_EQ(
        linksOf(desktopMenu(session.catalog())),
        (Texts{"[x] Link Displays", "---", "# Mail", "Link with >", "  Mail (Monitor B)",
               "  Desktop 2 (Monitor B)", "  Desktop 1 (Monitor C)", "---", "Link All of the Same Name"}));
    const auto gone = lineOf(desktopMenu(session.catalog()), "Desktop 1 (Monitor C)");
    session.provider->current.displays.pop_back();
    session.tell();
    commands.carryOut(gone);
    session.loop.runUntilIdle();
    EXPECT_EQ(session.notices.back(), (Notice{"That desktop is not there any more.", failureNoticeSeconds}));

    const auto all = lineOf(desktopMenu(session.catalog()), "Link All of the Same Name");
    commands.carryOut(all);
    EXPECT_EQ(session.notices.back().text, "“Mail” is now on both screens.");
    session.catalog().unlink("A-1", "test");
    for (const char* key : {"A-2", "B-2"}) session.catalog().rename(key, "Music");
    commands.carryOut(all);
    EXPECT_EQ(session.notices.back().text, "2 pairs of desktops are linked.");
    const std::size_t told = session.notices.size();
    commands.carryOut(all);
    EXPECT_EQ(session.notices.size(), told) << "nothing was left to link";
    EXPECT_FALSE(commands.carryOut(lineOf(desktopMenu(session.catalog()), "Settings…")));
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
    EXPECT_EQ(drawn(desktopMenu(session.catalog())), withEnd({"! " + sentence, "---"}));
    EXPECT_EQ(trayToolTip(session.catalog()), sentence);

    session.provider->failure = nullptr;
    session.tell();
    session.provider->failure = std::make_exception_ptr(SpaceKitError::enumerationFailed());
    session.tell();
    EXPECT_FALSE(session.catalog().displays->empty());
    EXPECT_EQ(drawn(desktopMenu(session.catalog())),
              withEnd({"! Could not read the list of desktops.", "---"}))
        << "what was read before may no longer be so";
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
