#include "tests/session/Program.h"
#include "tests/session/Session.h"

#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lumnara::testing {
namespace {

using Keys = std::vector<std::string>;

const Keys superReturn{"-M", "logo", "-k", "Return", "-m", "logo"};
const Keys superD{"-M", "logo", "-k", "d", "-m", "logo"};
const Keys superL{"-M", "logo", "-k", "l", "-m", "logo"};
const Keys escape{"-k", "Escape"};

/// The program on sway, driven by keys alone.
class SwayProgram : public ::testing::Test {
protected:
    SwayProgram() { program.start(); }

    void type(Keys keys) const {
        // A keyboard that is new needs a moment until everybody listens to it.
        keys.insert(keys.begin(), {"wtype", "-s", "300", "-d", "5"});
        ASSERT_EQ(session.run(keys).status, 0);
    }
    nlohmann::json ask(const std::string& what) const {
        return nlohmann::json::parse(session.run({"swaymsg", "-r", "-t", what}).text);
    }
    std::string visible(const std::string& output) const {
        for (const auto& workspace : ask("get_workspaces"))
            if (workspace["output"] == output && workspace["visible"] == true) return workspace["name"];
        return {};
    }
    bool comesToShow(const std::string& name) const {
        return waitUntil([&] { return visible("HEADLESS-1") == name; });
    }
    /// The outputs on which a Board covers everything, and the one that has the keyboard.
    std::string boards() const {
        std::string shown;
        const auto tree = ask("get_tree");
        for (const auto& output : tree["nodes"])
            for (const auto& workspace : output["nodes"])
                for (const auto& window : workspace["nodes"])
                    if (window["fullscreen_mode"] == 1 && window["visible"] == true)
                        shown += output["name"].get<std::string>() + (window["focused"] ? "* " : " ");
        return shown;
    }
    void openBoards() const {
        type({"-M", "alt", "-k", "1", "-m", "alt"});
        EXPECT_TRUE(waitUntil([&] { return boards() == "HEADLESS-1* HEADLESS-2 "; })) << boards();
    }
    void closeBoards() const {
        type(escape);
        EXPECT_TRUE(waitUntil([&] { return boards().empty(); })) << boards();
    }
    /// Whether the one desktop that has a record comes to be saved as dimmed, or as not.
    bool comesToBeDimmed(bool dimmed) const {
        return waitUntil([&] {
            std::ifstream file(program.file("desktops.json"));
            const auto saved = nlohmann::json::parse(file, nullptr, false);
            return saved.is_object() && saved["desktops"].size() == 1 &&
                   saved["desktops"].front()["isDimmed"] == dimmed;
        });
    }
    bool menuComesTo(const std::string& what, int count) const {
        return waitUntil([&] { return program.count("Lumnara menu tracking " + what) == count; });
    }

    // Some keys of the Board are sway's too. The first workspaces are those that keys go to.
    SwaySession session{"bindsym Mod4+1 workspace 1\nbindsym Mod4+2 workspace 2\n"
                        "bindsym Mod4+Return workspace 9\nbindsym Mod4+d workspace 9\n"
                        "bindsym Mod4+l workspace 9\n"};
    // A seat that loses its last keyboard loses its menus too.
    std::unique_ptr<Child> keyboard = session.start({"wtype", "-s", "600000"});
    Program program{session};
};

TEST_F(SwayProgram, NamesADesktopAndComesBackToIt) {
    openBoards();
    type({"-M", "logo", "-k", "Return", "-m", "logo", "Mail", "-k", "Return", "-k", "Escape"});
    ASSERT_TRUE(comesToShow("1: Mail")) << program.log();
    EXPECT_TRUE(waitUntil([&] { return boards().empty(); })) << boards();

    session.command("workspace 5");
    EXPECT_EQ(program.stop(), 0);
    program.start();
    openBoards();
    type({"mai", "-k", "Return"});
    EXPECT_TRUE(comesToShow("1: Mail")) << program.log();
    EXPECT_EQ(visible("HEADLESS-2"), "2");
    EXPECT_EQ(program.stop(), 0);
}

TEST_F(SwayProgram, KeepsTheBoardsKeysFromSwaysBindingsWhileItIsOpen) {
    type(superReturn);
    ASSERT_TRUE(comesToShow("9"));
    session.command("workspace 1");

    openBoards();
    type(superReturn);
    type({"Mail", "-k", "Return"});
    ASSERT_TRUE(comesToShow("1: Mail")) << program.log();
    type({"-k", "Tab"}); // to the other Board
    type(superReturn);
    type({"Music", "-k", "Return"});
    EXPECT_TRUE(waitUntil([&] { return visible("HEADLESS-2") == "2: Music"; })) << program.log();
    closeBoards();
    EXPECT_EQ(visible("HEADLESS-1"), "1: Mail");

    type(superReturn);
    ASSERT_TRUE(comesToShow("9"));
    EXPECT_EQ(program.stop(), 0);
}

TEST_F(SwayProgram, KeepsTheKeysThroughATilesMenu) {
    openBoards();
    type(superL);
    ASSERT_TRUE(menuComesTo("began", 1)) << program.log();
    type({"-k", "Down", "-k", "Return"}); // the second line dims
    ASSERT_TRUE(menuComesTo("ended", 1)) << program.log();
    EXPECT_TRUE(comesToBeDimmed(true));

    type(superL);
    ASSERT_TRUE(menuComesTo("began", 2)) << program.log();
    type(escape);
    ASSERT_TRUE(menuComesTo("ended", 2)) << program.log();
    EXPECT_EQ(boards(), "HEADLESS-1* HEADLESS-2 ");
    type(superD);
    EXPECT_TRUE(comesToBeDimmed(false));
    EXPECT_EQ(visible("HEADLESS-1"), "1");
    closeBoards();
    EXPECT_EQ(program.stop(), 0);
}

} // namespace
} // namespace lumnara::testing
