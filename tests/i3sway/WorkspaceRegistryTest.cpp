#include "core/platform/i3sway/WorkspaceRegistry.h"
#include "core/async/TestLoop.h"
#include "core/base/Files.h"
#include "core/platform/i3sway/WorkspaceNames.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class WorkspaceRegistryTest : public ::testing::Test {
protected:
    using Live = std::vector<WorkspaceRegistry::LiveDisplay>;

    WorkspaceRegistryTest() { open(); }

    void open() {
        registry.reset();
        registry = std::make_unique<WorkspaceRegistry>(loop, file);
    }
    std::vector<const RegisteredDesktop*> spaces(const std::string& display) {
        return registry->spaces(display);
    }
    /// The workspace names of a display's desktops, those without a workspace in brackets.
    std::string shown(const std::string& display) {
        std::string text;
        for (const RegisteredDesktop* desktop : spaces(display))
            text += desktop->handle ? desktop->workspace + " " : "[" + desktop->workspace + "] ";
        return text;
    }
    const RegisteredDesktop& named(const std::string& workspace) {
        for (const char* display : {"L", "R"})
            for (const RegisteredDesktop* desktop : spaces(display))
                if (desktop->workspace == workspace) return *desktop;
        throw std::out_of_range(workspace);
    }
    std::string uuid(const std::string& workspace) { return named(workspace).uuid; }
    /// Publishes one record for each pair of a uuid and a title.
    bool publish(const std::vector<std::pair<std::string, std::string>>& records) {
        std::vector<PublishedDesktop> published;
        for (const auto& [key, title] : records)
            published.push_back({.spaceKey = key, .space = {}, .display = {}, .name = title});
        return registry->setPublished(published);
    }
    /// The renames that are due, as "from>to ".
    std::string settle() {
        std::string text;
        const auto name = [](const std::string& own, const std::string& title, const auto& taken) {
            return titledWorkspace(IpcDialect::i3, own, title, taken);
        };
        for (const auto& rename : registry->settleNames(name)) text += rename.from + ">" + rename.to + " ";
        return text;
    }

    TemporaryFolder folder;
    std::filesystem::path file = folder / "workspaces.json";
    async::TestLoop loop;
    std::unique_ptr<WorkspaceRegistry> registry;
};

TEST_F(WorkspaceRegistryTest, KnowsAWorkspaceByItsName) {
    registry->reconcile({{"L", {{11, "1"}, {12, "www"}}}, {"R", {{13, "2"}}}});
    EXPECT_EQ(shown("L"), "1 www ");
    EXPECT_EQ(shown("R"), "2 ");
    const auto one = named("1");
    const auto www = named("www");
    EXPECT_NE(one.id, www.id);
    EXPECT_NE(one.id.raw, 0U);
    EXPECT_EQ(registry->find(std::int64_t{12})->uuid, www.uuid);

    // Left empty, it is forgotten, and the same when it comes back: under another container, on any output.
    registry->reconcile({{"L", {{11, "1"}}}, {"R", {{13, "2"}}}});
    EXPECT_EQ(shown("L"), "1 ");
    registry->reconcile({{"L", {{11, "1"}}}, {"R", {{13, "2"}, {99, "WWW"}}}});
    EXPECT_EQ(registry->find(www.id)->display, "R");
    EXPECT_EQ(registry->find(std::int64_t{99})->uuid, www.uuid);
}

TEST_F(WorkspaceRegistryTest, FollowsRenamesButNotContainersThatAreGivenAway) {
    registry->reconcile({{"L", {{11, "1"}, {12, "2"}}}});
    const std::string one = uuid("1");
    const std::string two = uuid("2");
    registry->renamed(11, "9: nine");
    registry->reconcile({{"L", {{12, "2"}, {11, "9: nine"}}}});
    EXPECT_EQ(uuid("9: nine"), one);

    // i3 gives the container of a dead workspace to the next one.
    registry->released(12);
    registry->renamed(12, "5");
    registry->reconcile({{"L", {{12, "5"}, {11, "9: nine"}}}});
    EXPECT_NE(uuid("5"), two);
    registry->reconcile({{"L", {{12, "2"}, {11, "9: nine"}}}});
    EXPECT_EQ(uuid("2"), two);

    // Nothing is followed into another run, where containers have other meanings.
    registry->beginRun();
    registry->renamed(11, "x");
    registry->reconcile({{"L", {{11, "2"}, {12, "9: nine"}}}});
    EXPECT_EQ(uuid("2"), two);
    EXPECT_EQ(uuid("9: nine"), one);
}

TEST_F(WorkspaceRegistryTest, KeepsDesktopsWithARecordInTheirPlaces) {
    registry->reconcile({{"L", {{1, "1"}, {2, "2"}, {3, "10"}, {4, "b"}, {5, "a"}, {6, "c"}}}});
    publish({{uuid("2"), ""}, {uuid("a"), ""}, {uuid("b"), ""}, {uuid("10"), ""}});
    EXPECT_EQ(settle(), "");
    registry->reconcile({{"L", {{1, "1"}, {6, "c"}}}});
    EXPECT_EQ(shown("L"), "1 [2] [10] [b] [a] c ");
    registry->reconcile({{"L", {{7, "3"}}}});
    EXPECT_EQ(shown("L"), "[2] 3 [10] [b] [a] ");
    // Made again, an unnumbered one stands at the window manager's end.
    registry->reconcile({{"L", {{7, "3"}, {8, "d"}, {9, "b"}}}});
    EXPECT_EQ(shown("L"), "[2] 3 [10] d b [a] ");

    EXPECT_TRUE(publish({{uuid("10"), ""}})) << "two cease to be Spaces";
    EXPECT_EQ(shown("L"), "3 [10] d b ");
    EXPECT_FALSE(publish({{uuid("10"), ""}, {uuid("d"), ""}}));
}

TEST_F(WorkspaceRegistryTest, PutsTitlesOnAndTakesThemOff) {
    registry->reconcile({{"L", {{1, "1"}, {3, "2: old"}, {2, "web"}}}});
    const auto one = uuid("1");
    const auto two = uuid("2: old");
    const auto web = uuid("web");
    publish({{one, "Mail"}, {two, "Code"}, {web, "Browser"}});
    EXPECT_EQ(settle(), "1>1: Mail 2: old>2: Code web>Browser ");
    EXPECT_EQ(settle(), "") << "asked once";
    registry->renamed(1, "1: Mail");
    registry->renamed(3, "2: Code");
    registry->renamed(2, "Browser");
    registry->reconcile({{"L", {{1, "1: Mail"}, {3, "2: Code"}, {2, "Browser"}}}});
    publish({{one, "Mail"}, {two, "Code"}, {web, "Browser"}});
    EXPECT_EQ(settle(), "") << "so already";

    publish({{one, ""}, {web, "Browser"}});
    EXPECT_EQ(settle(), "1: Mail>1 2: Code>2: old ");
    EXPECT_TRUE(named("1: Mail").kept);
    EXPECT_FALSE(named("2: Code").kept);
}

TEST_F(WorkspaceRegistryTest, LeavesAloneWhatTheUserRenamedInTheWindowManager) {
    registry->reconcile({{"L", {{1, "1"}}}});
    const auto one = uuid("1");
    publish({{one, "Mail"}});
    settle();
    registry->renamed(1, "1: Mail");
    registry->renamed(1, "4: Post");
    registry->reconcile({{"L", {{1, "4: Post"}}}});
    publish({{one, "Mail"}});
    EXPECT_EQ(settle(), "");
    publish({{one, "Letters"}});
    EXPECT_EQ(settle(), "4: Post>4: Letters ");
}

TEST_F(WorkspaceRegistryTest, NamesManyAtOnceWithoutAClash) {
    registry->reconcile({{"L", {{1, "a"}, {2, "b"}}}, {"R", {{3, "c"}, {4, "4"}}}});
    const std::string a = uuid("a");
    const std::string b = uuid("b");
    publish({{a, "Mail"}, {b, "Mail"}, {uuid("c"), "mail"}, {uuid("4"), "Mail"}});
    EXPECT_EQ(settle(), "a>Mail b>Mail 2 c>mail 3 4>4: Mail ");

    // A second wish before the first is done goes on from where that will lead.
    publish({{a, "Post"}, {b, "Mail"}, {uuid("c"), "mail"}, {uuid("4"), "Mail"}});
    EXPECT_EQ(settle(), "Mail>Post ");
    registry->renamed(1, "Mail");
    registry->renamed(1, "Post");
    publish({{a, ""}, {b, "Mail"}, {uuid("c"), "mail"}, {uuid("4"), "Mail"}});
    EXPECT_EQ(settle(), "Post>a ") << "its own name is not one of ours";

    // What was refused is asked for once more, and then leaves its name free.
    EXPECT_FALSE(registry->renameRefused({.uuid = b, .from = "b", .to = "Mail 2"}));
    EXPECT_EQ(settle(), "b>Mail ") << "which is free by now";
    EXPECT_TRUE(registry->renameRefused({.uuid = b, .from = "b", .to = "Mail"}));
    EXPECT_EQ(settle(), "");
    publish({{a, "Mail"}, {b, "Mail"}, {uuid("c"), "mail"}, {uuid("4"), "Mail"}});
    EXPECT_EQ(settle(), "a>Mail ");
}

TEST_F(WorkspaceRegistryTest, FindsTitledDesktopsAgainUnderTheirOwnNames) {
    registry->reconcile({{"L", {{1, "1"}, {2, "2: x"}, {3, "web"}}}});
    const std::string one = uuid("1");
    const std::string two = uuid("2: x");
    const std::string web = uuid("web");
    publish({{one, "Mail"}, {two, "Code"}, {web, "Browser"}});
    settle();
    // The window manager is killed; a new one knows no titles.
    open();
    registry->beginRun();
    registry->reconcile({{"L", {{71, "1"}}}, {"R", {{72, "2"}}}});
    EXPECT_EQ(uuid("1"), one);
    EXPECT_EQ(uuid("2"), two);
    EXPECT_EQ(settle(), "1>1: Mail 2>2: Code ");
    EXPECT_EQ(shown("L"), "1 [Browser] ") << "the number is on the other output now";
    registry->renamed(71, "1: Mail");
    registry->renamed(72, "2: Code");

    registry->reconcile({{"L", {{71, "1: Mail"}, {73, "WEB"}}}, {"R", {{72, "2: Code"}, {74, "7"}}}});
    EXPECT_EQ(uuid("WEB"), web);
    EXPECT_EQ(settle(), "WEB>Browser ");
    EXPECT_EQ(shown("R"), "2: Code 7 ");

    // While the titled one is there, its bare number is another desktop.
    registry->reconcile({{"L", {{71, "1: Mail"}, {75, "1"}}}, {"R", {{72, "2: Code"}}}});
    EXPECT_EQ(uuid("1: Mail"), one);
    EXPECT_NE(uuid("1"), one);
}

TEST_F(WorkspaceRegistryTest, AsksAgainInTheNextRunForWhatWasNotDone) {
    registry->reconcile({{"L", {{1, "1"}}}});
    publish({{uuid("1"), "Mail"}});
    EXPECT_EQ(settle(), "1>1: Mail ");
    registry->beginRun();
    EXPECT_FALSE(registry->hasReading());
    registry->reconcile({{"L", {{2, "1"}}}});
    EXPECT_EQ(settle(), "1>1: Mail ");
}

TEST_F(WorkspaceRegistryTest, KnowsWhatWasDoneWhileNobodyListened) {
    for (const bool closed : {false, true}) {
        registry->reconcile({{"L", {{1, "1"}, {2, "2"}}}});
        const std::string one = uuid("1");
        publish({{one, "Mail"}});
        EXPECT_EQ(settle(), "1>1: Mail ");
        if (closed)
            open();
        else
            registry->beginRun();
        publish({{one, "Post"}});
        registry->reconcile({{"L", {{1, "1: Mail"}, {2, "2"}}}});
        EXPECT_EQ(uuid("1: Mail"), one);
        EXPECT_EQ(settle(), "1: Mail>1: Post ");
        registry->renamed(1, "1: Post");
        publish({});
        EXPECT_EQ(settle(), "1: Post>1 ");
        registry->renamed(1, "1");
    }
}

TEST_F(WorkspaceRegistryTest, NamesWhatIsAbsentWithoutAsking) {
    registry->reconcile({{"L", {{1, "1"}, {2, "2"}}}});
    const std::string two = uuid("2");
    publish({{two, "Mail"}});
    settle();
    registry->renamed(2, "2: Mail");
    registry->reconcile({{"L", {{1, "1"}}}});
    publish({{two, "Post"}});
    EXPECT_EQ(settle(), "");
    EXPECT_EQ(shown("L"), "1 [2: Post] ");
    // Somebody else takes the name meanwhile.
    registry->renamed(1, "2: post");
    EXPECT_EQ(settle(), "");
    registry->reconcile({{"L", {{1, "2: post"}}}});
    EXPECT_EQ(shown("L"), "2: post [2: Post 2] ");
}

TEST_F(WorkspaceRegistryTest, LosesNothingWithAMonitor) {
    registry->reconcile({{"L", {{1, "1"}}}, {"R", {{2, "2"}, {3, "3"}, {4, "4"}}}});
    const std::string two = uuid("2");
    const std::string three = uuid("3");
    const std::string four = uuid("4");
    publish({{two, "Mail"}, {three, "Code"}});
    settle();
    for (const int n : {2, 3}) registry->renamed(n, n == 2 ? "2: Mail" : "3: Code");
    registry->reconcile({{"L", {{1, "1"}}}, {"R", {{2, "2: Mail"}, {4, "4"}}}});
    EXPECT_EQ(shown("R"), "2: Mail [3: Code] 4 ");

    // Unplugged: what has windows moves, what has none waits for its monitor.
    registry->reconcile({{"L", {{1, "1"}, {2, "2: Mail"}}}});
    EXPECT_EQ(shown("L"), "1 2: Mail ");
    EXPECT_EQ(shown("R"), "[3: Code] ");
    publish({{two, "Mail"}});
    EXPECT_EQ(settle(), "");
    open();
    registry->reconcile({{"L", {{1, "1"}, {2, "2: Mail"}}}, {"R", {{9, "4"}}}});
    EXPECT_EQ(shown("L"), "1 2: Mail ");
    EXPECT_EQ(shown("R"), "[3: Code] 4 ");
    EXPECT_EQ(uuid("2: Mail"), two);
    EXPECT_EQ(uuid("3: Code"), three);
    EXPECT_EQ(uuid("4"), four);
}

TEST_F(WorkspaceRegistryTest, WritesOnlyChangesAndLaterThanTheyCome) {
    registry->reconcile({{"L", {{1, "1"}, {2, "2"}}}});
    EXPECT_FALSE(std::filesystem::exists(file));
    loop.advance(1.5);
    open(); // waits for what is being written
    const std::string written = readFile(file);
    const auto time = std::filesystem::last_write_time(file);
    registry->reconcile({{"L", {{8, "1"}, {9, "2"}}}});
    registry->reconcile({{"L", {{8, "1"}}}});
    registry->reconcile({{"L", {{8, "1"}, {9, "2"}}}});
    loop.advance(5);
    open();
    EXPECT_EQ(std::filesystem::last_write_time(file), time);
    EXPECT_EQ(readFile(file), written);
    registry->reconcile({{"L", {{8, "1"}, {9, "3"}}}});
    open(); // ends before the time is up, and writes all the same
    EXPECT_NE(readFile(file).find("\"workspace\": \"3\""), std::string::npos);
}

TEST_F(WorkspaceRegistryTest, ForgetsTheOldestOfThoseWithoutARecord) {
    registry->reconcile({{"L", {{1, "kept"}, {2, "first"}}}});
    const std::string kept = uuid("kept");
    const std::string first = uuid("first");
    publish({{kept, ""}});
    std::string second;
    for (int i = 0; i < static_cast<int>(WorkspaceRegistry::mostForgotten) + 1; ++i) {
        registry->reconcile({{"L", {{3, "w" + std::to_string(i)}}}});
        if (i == 0) second = uuid("w0");
    }
    registry->reconcile({{"L", {{3, "first"}, {4, "w0"}}}});
    EXPECT_NE(uuid("first"), first);
    EXPECT_EQ(uuid("w0"), second);
    EXPECT_EQ(uuid("kept"), kept);
}

TEST_F(WorkspaceRegistryTest, AddsADesktopWithTheFirstFreeNumber) {
    registry->reconcile({{"L", {{11, "1"}, {12, "4: x"}, {13, "web"}}}, {"R", {{14, "5"}, {15, "6"}}}});
    registry->reconcile({{"L", {{11, "1"}, {12, "4: x"}, {13, "web"}}}, {"R", {{14, "5"}}}});
    registry->create("L");
    registry->reconcile({{"L", {{11, "1"}, {12, "4: x"}, {13, "web"}}}, {"R", {{14, "5"}}}});
    EXPECT_EQ(shown("L"), "1 4: x [6] web ") << "6 was only remembered";
    const std::string six = uuid("6");
    publish({});
    open();
    registry->reconcile({{"L", {{21, "6"}}}, {"R", {{24, "5"}}}});
    EXPECT_EQ(uuid("6"), six);
    registry->reconcile({{"L", {{22, "7"}}}, {"R", {{24, "5"}}}});
    EXPECT_EQ(shown("L"), "[6] 7 ");
    registry->remove(named("7").id);
    EXPECT_EQ(shown("L"), "[6] 7 ") << "it has a workspace";
    registry->remove(named("6").id);
    EXPECT_EQ(shown("L"), "7 ");
}

TEST_F(WorkspaceRegistryTest, FollowsAnOrderAsFarAsItWasCarriedOut) {
    const Live live{{"L", {{11, "1"}, {12, "2"}}}};
    registry->reconcile(live);
    const SpaceID one = named("1").id;
    const SpaceID two = named("2").id;
    const std::string first = uuid("1");
    auto renames = registry->arrange({two, one}, IpcDialect::i3);
    ASSERT_EQ(renames.size(), 4U);
    registry->arranged(renames);
    registry->reconcile(live);
    EXPECT_EQ(named("1").id, one) << "nothing was announced";
    EXPECT_EQ(settle(), "");

    renames = registry->arrange({two, one}, IpcDialect::i3);
    for (const auto& rename : renames) registry->renamed(rename.uuid == first ? 11 : 12, rename.to);
    registry->arranged(renames);
    registry->reconcile({{"L", {{12, "1"}, {11, "2"}}}});
    EXPECT_EQ(registry->spaces("L").front()->id, two);
    EXPECT_EQ(registry->spaces("L").front()->ownName, "1");

    renames = registry->arrange({one, two}, IpcDialect::i3);
    registry->renamed(12, renames[1].to);
    registry->arranged(renames);
    EXPECT_EQ(settle(), renames[1].to + ">1 ") << "it was left with the name in passing";
}

} // namespace
} // namespace lumnara::testing
