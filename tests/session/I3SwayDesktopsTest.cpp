#include "core/platform/i3sway/IpcReplies.h"
#include "tests/session/IpcFixture.h"

#include <map>
#include <random>
#include <set>

namespace lumnara::testing {
namespace {

using Case = WindowManagerError::Case;

class IpcDesktopsTest : public ::testing::TestWithParam<IpcWindowManager> {
protected:
    IpcFixture at{GetParam(), "workspace_auto_back_and_forth yes\n"};
    std::string left = at.left();
    std::string right = at.right();
};

INSTANTIATE_TEST_SUITE_P(Ipc, IpcDesktopsTest,
                         ::testing::Values(IpcWindowManager::i3, IpcWindowManager::sway),
                         [](const auto& info) {
                             return std::string(info.param == IpcWindowManager::i3 ? "i3" : "sway");
                         });

TEST_P(IpcDesktopsTest, AreReadAndSwitchedOnEachDisplay) {
    ASSERT_TRUE(at.shows(left, "1* ") && at.shows(right, "2* "));
    const std::string one = at.current(left);
    const std::string two = at.current(right);
    EXPECT_EQ(at.provider().snapshot().displays.size(), 2U);
    EXPECT_EQ(at.provider().menuBarDisplay(), DisplayID{left});
    EXPECT_EQ(at.provider().displayName(right).has_value(), true);

    at.command("focus output " + right + "; workspace web");
    ASSERT_TRUE(at.shows(right, "web* "));
    const std::string web = at.current(right);
    EXPECT_EQ(at.provider().menuBarDisplay(), DisplayID{right});
    at.publish({{two, ""}, {web, ""}});
    at.command("focus output " + left);
    EXPECT_EQ(at.switchTo(two), std::nullopt);
    EXPECT_TRUE(at.shows(right, "2* ") && at.shows(left, "1* "));
    EXPECT_EQ(at.current(right), two);
    EXPECT_EQ(at.current(left), one);
    EXPECT_EQ(at.switchTo(two), "You are already on that desktop.");
    EXPECT_EQ(at.switchTo(one), "You are already on that desktop.");
    EXPECT_EQ(at.switchTo("nowhere"), "That desktop no longer exists.");
}

TEST_P(IpcDesktopsTest, AreMadeAgainOnTheirOwnDisplay) {
    std::map<std::string, std::string> homes{{at.current(left), left}, {at.current(right), right}};
    for (const std::string name : {"web", "5", "9: x"}) {
        at.command("focus output " + right + "; workspace " + name);
        ASSERT_TRUE(at.shows(right, name + "* "));
        homes[at.current(right)] = right;
        at.command("focus output " + left + "; workspace \"left " + name + "\"");
        ASSERT_TRUE(at.shows(left, "left " + name + "* "));
        homes[at.current(left)] = left;
    }
    ASSERT_EQ(homes.size(), 8U);
    std::vector<std::pair<std::string, std::string>> records;
    for (const auto& [uuid, home] : homes) records.emplace_back(uuid, "");
    at.publish(records);

    std::mt19937 random(7);
    for (int i = 0; i < 60; ++i) {
        const auto& [uuid, home] = *std::next(homes.begin(), static_cast<long>(random() % homes.size()));
        if (uuid == at.current(home)) continue;
        ASSERT_EQ(at.switchTo(uuid), std::nullopt);
        ASSERT_EQ(at.current(home), uuid);
        // An activation of what shows already must not go back to what showed before.
        ASSERT_EQ(at.switchTo(uuid), "You are already on that desktop.");
    }
    for (const std::string& output : {left, right})
        EXPECT_EQ(at.desktops(output).spaces.size(), 4U) << output;
}

TEST_P(IpcDesktopsTest, GoByTheNamesThatTheUserGives) {
    const std::string one = at.current(left);
    const std::string two = at.current(right);
    at.command("focus output " + right + "; workspace web");
    ASSERT_TRUE(at.shows(right, "web* "));
    const std::string web = at.current(right);
    at.publish({{two, ""}, {web, ""}});
    const std::pair<std::string, std::string> titles[] = {
        {"Mail", "Mail"},
        {"a \"quoted\" one", "a \"quoted\" one"},
        {"it's \"both\"", "it's \"both\""},
        {"back\\slash; workspace 7, nop", "back\\slash; workspace 7, nop"},
        {"$mod $$ #x {y} [z] %s", "$mod $$ #x {y} [z] %s"},
        {"  two\nlines\t", "two lines"},
        {"日本語 é", "日本語 é"},
        {"to 4", "to 4"},
        {"back_and_forth", "back_and_forth 2"}};
    for (const auto& [title, shown] : titles) {
        const bool reserved = title == "back_and_forth";
        at.publish({{one, title}, {two, ""}, {web, title}});
        ASSERT_TRUE(at.shows(left, "1: " + (reserved ? title : shown) + "* ")) << title;
        ASSERT_TRUE(at.shows(right, shown + "* ")) << title;
        ASSERT_EQ(at.current(left), one);
        ASSERT_EQ(at.current(right), web);
        // Left and forgotten, it is made again by its name.
        ASSERT_EQ(at.switchTo(two), std::nullopt) << title;
        ASSERT_EQ(at.switchTo(web), std::nullopt) << title;
        ASSERT_TRUE(at.shows(right, shown + "* ")) << title;
    }
    at.publish({{one, "Mail"}, {web, "Mail"}, {two, ""}});
    ASSERT_TRUE(at.shows(left, "1: Mail* ") && at.shows(right, "Mail* "));
    at.publish({});
    EXPECT_TRUE(at.shows(left, "1* ") && at.shows(right, "web* "));
}

TEST_P(IpcDesktopsTest, AreFollowedWhenTheUserRenamesThem) {
    const std::string one = at.current(left);
    at.events.clear();
    at.command("rename workspace 1 to \"4: other\"");
    ASSERT_TRUE(at.runUntil([&] { return !at.events.empty(); }));
    EXPECT_EQ(at.current(left), one);
    at.publish({{one, "Mail"}});
    ASSERT_TRUE(at.shows(left, "4: Mail* "));
    at.command("rename workspace \"4: Mail\" to \"4: mine\"");
    ASSERT_TRUE(at.shows(left, "4: mine* "));
    at.publish({{one, "Mail"}});
    EXPECT_EQ(at.current(left), one);
    EXPECT_TRUE(at.shows(left, "4: mine* "));
}

/// i3 gives containers of dead workspaces away again at once.
TEST_P(IpcDesktopsTest, AreKnownByTheirNamesThroughAnyChurn) {
    std::mt19937 random(3);
    std::map<std::string, std::string> known;
    for (int i = 0; i < 60; ++i) {
        const std::string name(1, static_cast<char>('a' + random() % 6));
        at.command("focus output " + left + "; workspace --no-auto-back-and-forth " + name);
        // Every other time nothing was read in between.
        if (random() % 2) continue;
        const auto [entry, added] = known.emplace(name, at.current(left));
        ASSERT_EQ(at.current(left), entry->second) << name;
    }
    std::set<std::string> distinct;
    for (const auto& [name, uuid] : known) distinct.insert(uuid);
    EXPECT_EQ(distinct.size(), known.size());
}

/// What we keep of the front application against what the window manager's tree says.
TEST_P(IpcDesktopsTest, TellWhoHasTheKeyboardThroughAnyChurn) {
    const bool isI3 = GetParam() == IpcWindowManager::i3;
    std::vector<std::unique_ptr<Child>> windows;
    const auto open = [&](const std::string& name) {
        if (isI3)
            at.x().openWindow(name);
        else
            windows.push_back(at.sway().start({"foot", "--app-id", name, "sleep", "600"}));
    };
    const auto inTree = [&] {
        const auto tree = isI3 ? at.x().run({"i3-msg", "-s", at.x().i3Socket(), "-t", "get_tree"})
                               : at.sway().run({"swaymsg", "-s", at.sway().socket(), "-t", "get_tree"});
        const auto app = parseFocus(tree.text).application;
        return app ? app->name : "none";
    };
    const auto kept = [&] {
        const auto app = at.platform().workspace->frontmostApplication();
        return app ? app->name : "none";
    };
    std::mt19937 random(5);
    // Nothing goes full screen: i3 maps no window that opens behind.
    const std::string commands[] = {"focus output " + left,
                                    "focus output " + right,
                                    "workspace a",
                                    "workspace b",
                                    "workspace c",
                                    "move container to workspace b",
                                    "move container to workspace c",
                                    "kill",
                                    "focus left",
                                    "focus right",
                                    "floating toggle",
                                    "move container to output " + right,
                                    "move scratchpad",
                                    "scratchpad show",
                                    "split toggle"};
    for (int i = 0; i < 120; ++i) {
        std::string done = "open";
        if (i % 4 == 0) {
            open("w" + std::to_string(i));
        } else {
            done = commands[random() % std::size(commands)];
            at.command(done);
        }
        ASSERT_TRUE(at.runUntil([&] { return kept() == inTree(); }, 3))
            << i << " " << done << ": " << kept() << ", and by the tree " << inTree();
    }
}

TEST_P(IpcDesktopsTest, ComeBackAfterTheWindowManagerIsKilled) {
    const std::string one = at.current(left);
    const std::string two = at.current(right);
    at.command("focus output " + right + "; workspace web");
    ASSERT_TRUE(at.shows(right, "web* "));
    const std::string web = at.current(right);
    const std::vector<std::pair<std::string, std::string>> names{
        {one, "Mail"}, {two, "Code"}, {web, "Browser"}};
    at.publish(names);
    ASSERT_TRUE(at.shows(left, "1: Mail* ") && at.shows(right, "Browser* "));

    const bool isI3 = GetParam() == IpcWindowManager::i3;
    if (isI3)
        at.x().killWindowManager();
    else
        at.sway().killWindowManager();
    ASSERT_TRUE(at.runUntil([&] { return at.failure().has_value(); }));
    EXPECT_EQ(at.failure(), WindowManagerError(Case::connectionLost, at.platform().name));
    EXPECT_EQ(at.switchTo(web), at.failure()->sentence());
    at.publish(names);
    if (isI3)
        at.x().startWindowManager();
    else
        at.sway().startWindowManager();

    ASSERT_TRUE(at.answers());
    EXPECT_TRUE(at.shows(left, "1: Mail* "));
    EXPECT_TRUE(at.shows(right, "2: Code* "));
    EXPECT_EQ(at.current(left), one);
    EXPECT_EQ(at.current(right), two);
    EXPECT_EQ(at.switchTo(web), std::nullopt);
    EXPECT_TRUE(at.shows(right, "Browser* "));
}

TEST_P(IpcDesktopsTest, OutliveTheProgram) {
    const std::string one = at.current(left);
    at.command("focus output " + right + "; workspace web");
    ASSERT_TRUE(at.shows(right, "web* "));
    const std::string web = at.current(right);
    at.publish({{one, "Mail"}, {web, ""}});
    at.command("workspace other");
    ASSERT_TRUE(at.shows(right, "other* "));
    at.restartLumnara();
    ASSERT_TRUE(at.answers());
    EXPECT_EQ(at.current(left), one);
    EXPECT_EQ(at.switchTo(web), std::nullopt);
    EXPECT_TRUE(at.shows(left, "1: Mail* ") && at.shows(right, "web* "));
}

TEST_P(IpcDesktopsTest, SurviveAWindowManagerThatHangs) {
    const std::string one = at.current(left);
    const bool isI3 = GetParam() == IpcWindowManager::i3;
    if (isI3)
        at.x().stopWindowManager();
    else
        at.sway().stopWindowManager();
    const WindowManagerError silent(Case::notAnswering, at.platform().name);
    auto start = at.loop.now();
    at.publish({{one, "Mail"}});
    EXPECT_LT(at.loop.now() - start, std::chrono::milliseconds(100));
    EXPECT_EQ(at.failure(), silent);
    EXPECT_LT(at.loop.now() - start, std::chrono::milliseconds(1500));
    start = at.loop.now();
    for (int i = 0; i < 20; ++i) EXPECT_EQ(at.failure(), silent);
    EXPECT_EQ(at.switchTo(one), silent.sentence());
    at.publish({{one, "Post"}});
    EXPECT_LT(at.loop.now() - start, std::chrono::milliseconds(200));

    if (isI3)
        at.x().continueWindowManager();
    else
        at.sway().continueWindowManager();
    ASSERT_TRUE(at.answers());
    EXPECT_EQ(at.current(left), one);
    EXPECT_TRUE(at.shows(left, "1: Post* "));
}

} // namespace
} // namespace lumnara::testing
