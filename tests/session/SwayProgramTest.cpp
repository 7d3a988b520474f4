#include "tests/session/Program.h"
#include "tests/session/Session.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

namespace lumnara::testing {
namespace {

using Keys = std::vector<std::string>;

const Keys boardShortcut{"-M", "alt", "-k", "1", "-m", "alt"};
const Keys superReturn{"-M", "logo", "-k", "Return", "-m", "logo"};
const Keys superD{"-M", "logo", "-k", "d", "-m", "logo"};
const Keys superL{"-M", "logo", "-k", "l", "-m", "logo"};
const Keys escape{"-k", "Escape"};

/// The part of an output's height, from the top, in which a light card stands; nothing where there is none.
std::optional<double> cardOn(const Session& session, const std::string& output) {
    constexpr std::size_t width = 1280;
    constexpr std::size_t height = 800;
    constexpr int least = 100; // pixels of a row
    const std::string file = session.folder() / "output.ppm";
    EXPECT_EQ(session.run({"grim", "-t", "ppm", "-o", output, file}).status, 0);
    std::ifstream stream(file, std::ios::binary);
    const std::string picture{std::istreambuf_iterator<char>(stream), {}};
    const std::size_t start = picture.size() - std::min(picture.size(), width * height * 3);
    for (std::size_t row = 0; row < height; ++row) {
        const std::string pixels = picture.substr(start + row * width * 3, width * 3);
        const auto isLight = [](char part) { return static_cast<unsigned char>(part) > 240; };
        if (std::ranges::count_if(pixels, isLight) >= least * 3) return static_cast<double>(row) / height;
    }
    return std::nullopt;
}

/// Goes through sway's tree.
void visitNodes(const nlohmann::json& node, const std::function<void(const nlohmann::json&)>& visit) {
    visit(node);
    for (const char* children : {"nodes", "floating_nodes"})
        for (const auto& child : node[children]) visitNodes(child, visit);
}

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
    bool cardComesTo(const std::string& output) const {
        return waitUntil([&] { return cardOn(session, output).has_value(); });
    }
    bool cardLeaves(const std::string& output) const {
        return waitUntil([&] { return !cardOn(session, output); });
    }
    /// Where every window stands.
    std::map<int, std::string> windows() const {
        std::map<int, std::string> found;
        visitNodes(ask("get_tree"), [&](const nlohmann::json& node) {
            if (node.contains("pid")) found[node["id"]] = node["rect"].dump();
        });
        return found;
    }
    /// The name of the window or workspace that has the focus.
    std::string focused() const {
        std::string name;
        visitNodes(ask("get_tree"), [&](const nlohmann::json& node) {
            if (node["focused"] == true) name = node["name"].get<std::string>();
        });
        return name;
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
        type(boardShortcut);
        EXPECT_TRUE(waitUntil([&] { return boards() == "HEADLESS-1* HEADLESS-2 "; })) << boards();
    }
    void closeBoards(const Keys& keys) const {
        type(keys);
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
    closeBoards(boardShortcut); // which sway has a binding for, too
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
    closeBoards(escape);
    EXPECT_EQ(program.stop(), 0);
}

TEST_F(SwayProgram, NamesADesktopOnACardThatLeavesFocusAndTilesAlone) {
    session.command("default_border none"); // it comes late, and moves the window
    session.command("workspace 7");
    const auto first = session.start({"foot", "sleep", "1000"});
    const auto second = session.start({"foot", "sleep", "1000"});
    ASSERT_TRUE(waitUntil([&] { return windows().size() == 2; }));
    session.command("workspace 1");
    ASSERT_TRUE(cardLeaves("HEADLESS-1"));

    const auto tiles = windows();
    session.command("workspace 7");
    const std::string window = focused();
    ASSERT_TRUE(cardComesTo("HEADLESS-1")) << program.log();
    EXPECT_LT(cardOn(session, "HEADLESS-1"), 0.2);
    EXPECT_FALSE(cardOn(session, "HEADLESS-2"));
    EXPECT_EQ(windows(), tiles);
    EXPECT_EQ(focused(), window);
    EXPECT_TRUE(cardLeaves("HEADLESS-1"));
    EXPECT_EQ(windows(), tiles);

    // With no window to have it, the focus stays with the workspace.
    session.command("focus output HEADLESS-2; workspace 8");
    ASSERT_TRUE(cardComesTo("HEADLESS-2")) << program.log();
    EXPECT_FALSE(cardOn(session, "HEADLESS-1"));
    EXPECT_EQ(focused(), "8");
    EXPECT_TRUE(cardLeaves("HEADLESS-2"));
    EXPECT_EQ(focused(), "8");
    EXPECT_EQ(program.stop(), 0);
}

TEST(SwayNotice, StandsLowOnTheFocusedOutput) {
    // The Board's first shortcut is taken, of which the program tells at the start.
    const SwaySession session("bindsym Mod1+1 workspace 1\nbindsym Mod1+2 workspace 2\n"
                              "focus output HEADLESS-2\n");
    Program program(session);
    program.start();
    ASSERT_TRUE(waitUntil([&] { return cardOn(session, "HEADLESS-2").has_value(); })) << program.log();
    EXPECT_GT(cardOn(session, "HEADLESS-2"), 0.7);
    EXPECT_FALSE(cardOn(session, "HEADLESS-1"));
    EXPECT_EQ(program.stop(), 0);
    EXPECT_TRUE(waitUntil([&] { return !cardOn(session, "HEADLESS-2"); }));
}

} // namespace
} // namespace lumnara::testing
