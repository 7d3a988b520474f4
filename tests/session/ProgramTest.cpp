#include "tests/session/Program.h"
#include "tests/session/Session.h"

#include <X11/keysym.h>
#include <algorithm>
#include <cctype>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lumnara::testing {
namespace {

/// A place on the first tile of a monitor's Board.
constexpr int tileX = 300;
constexpr int tileY = 360;

void typeText(XSession& session, const std::string& text) {
    for (const char c : text) {
        const auto keysym = static_cast<std::uint32_t>(std::tolower(static_cast<unsigned char>(c)));
        if (std::isupper(static_cast<unsigned char>(c)))
            session.pressKey(keysym, {XK_Shift_L});
        else
            session.pressKey(keysym);
    }
}

void openBoard(XSession& session, const Program& program) {
    const int before = program.count("Lumnara Board: open on");
    // Right after a choice the Board that closed may still have it.
    ASSERT_TRUE(session.awaitFreeKeyboard());
    session.pressKey(XK_1, {XK_Alt_L});
    ASSERT_TRUE(waitUntil([&] { return program.count("Lumnara Board: open on") > before; })) << program.log();
}

/// Names the current desktop on the Board and closes it.
void nameCurrent(XSession& session, const Program& program, const std::string& name) {
    openBoard(session, program);
    session.pressKey(XK_Return, {XK_Super_L});
    typeText(session, name);
    session.pressKey(XK_Return);
    session.pressKey(XK_Escape);
    EXPECT_TRUE(session.awaitFreeKeyboard());
}

void goTo(XSession& session, const Program& program, const std::string& letters) {
    openBoard(session, program);
    typeText(session, letters);
    session.pressKey(XK_Return);
}

std::string i3Visible(const XSession& session, const std::string& output) {
    const auto workspaces =
        nlohmann::json::parse(session.run({"i3-msg", "-t", "get_workspaces"}).text, nullptr, false);
    if (!workspaces.is_array()) return {};
    for (const auto& workspace : workspaces)
        if (workspace["output"] == output && workspace["visible"] == true) return workspace["name"];
    return {};
}

TEST(Program, NamesSurviveItsOwnEndAndThatOfI3) {
    XSession session(WindowManager::i3);
    session.movePointer(300, 700);
    session.openWindow("A window");
    Program program(session);
    program.start();
    nameCurrent(session, program, "Mail");
    ASSERT_TRUE(waitUntil([&] { return i3Visible(session, "L") == "1: Mail"; })) << program.log();

    // Told to end right after the change: what was still to be written is written.
    EXPECT_EQ(program.stop(), 0);
    program.start();
    session.run({"i3-msg", "workspace 7"});
    goTo(session, program, "ma");
    EXPECT_TRUE(waitUntil([&] { return i3Visible(session, "L") == "1: Mail"; })) << program.log();

    // An i3 that died takes its workspaces with it; the new one is told the name again.
    session.killWindowManager(SIGKILL);
    session.startWindowManager();
    EXPECT_TRUE(waitUntil([&] { return i3Visible(session, "L") == "1: Mail"; })) << program.log();
    session.run({"i3-msg", "workspace 7"});
    goTo(session, program, "ma");
    EXPECT_TRUE(waitUntil([&] { return i3Visible(session, "L") == "1: Mail"; })) << program.log();
    EXPECT_EQ(program.stop(), 0);
}

/// The names of what both monitors show, "L, R".
std::string bothVisible(const XSession& session) {
    return i3Visible(session, "L") + ", " + i3Visible(session, "R");
}

TEST(Program, LinksDesktopsOnItsBoards) {
    XSession session(WindowManager::i3);
    session.movePointer(300, 700);
    Program program(session);
    program.start();
    nameCurrent(session, program, "Mail");
    const auto shows = [&](const std::string& both) {
        return waitUntil([&] { return bothVisible(session) == both; });
    };
    ASSERT_TRUE(shows("1: Mail, 2"));

    // The last line of a tile's menu turns links on; then the tile can be dragged to the other screen.
    openBoard(session, program);
    session.pressKey(XK_l, {XK_Super_L});
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking began") == 1; })) << program.log();
    session.pressKey(XK_Up);
    session.pressKey(XK_Return);
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking ended") == 1; })) << program.log();
    session.drag(tileX, tileY, 1280 + tileX, tileY);
    ASSERT_TRUE(waitUntil([&] { return program.count("Lumnara link request: with for Mail") == 1; }))
        << program.log();
    ASSERT_TRUE(shows("1: Mail, 2: Mail")) << bothVisible(session);

    // The Board stands on and has the keyboard; the name alone brings both monitors back.
    session.pressKey(XK_Escape);
    EXPECT_TRUE(session.awaitFreeKeyboard());
    session.run({"i3-msg", "focus output R; workspace 8; focus output L; workspace 7"});
    ASSERT_TRUE(shows("7, 8"));
    goTo(session, program, "mai");
    ASSERT_TRUE(shows("1: Mail, 2: Mail")) << program.log();

    openBoard(session, program);
    session.click(tileX, tileY, 3);
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking began") == 2; })) << program.log();
    session.pressKey(XK_Up);
    session.pressKey(XK_Return);
    ASSERT_TRUE(shows("1: Mail, 2")) << bothVisible(session) << program.log();

    // Where nothing is linked, the last line makes the other half.
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking ended") == 2; })) << program.log();
    session.click(tileX, tileY, 3);
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking began") == 3; })) << program.log();
    session.pressKey(XK_Up);
    session.pressKey(XK_Return);
    ASSERT_TRUE(waitUntil([&] { return program.count("Lumnara link request: create for Mail") == 1; }))
        << program.log();
    ASSERT_TRUE(waitUntil([&] { return program.count("menu tracking ended") == 3; })) << program.log();
    session.pressKey(XK_Escape);
    EXPECT_TRUE(session.awaitFreeKeyboard());
    EXPECT_TRUE(shows("1: Mail, 2")) << "nobody was taken anywhere";
    goTo(session, program, "mai");
    ASSERT_TRUE(shows("1: Mail, 3: Mail")) << bothVisible(session) << program.log();
    EXPECT_EQ(program.stop(), 0);
}

TEST(Program, NamesADesktopOfOpenboxAndGoesBackToItByDigitAndLetters) {
    XSession session(WindowManager::openbox);
    Program program(session);
    program.start();
    nameCurrent(session, program, "Mail");
    ASSERT_TRUE(waitUntil([&] {
        return session.rootProperty("_NET_DESKTOP_NAMES").value_or("").starts_with(std::string("Mail\0", 5));
    })) << program.log();

    openBoard(session, program);
    session.pressKey(XK_3);
    EXPECT_TRUE(waitUntil([&] { return session.rootProperty("_NET_CURRENT_DESKTOP") == "2"; }))
        << program.log();
    goTo(session, program, "mail");
    EXPECT_TRUE(waitUntil([&] { return session.rootProperty("_NET_CURRENT_DESKTOP") == "0"; }))
        << program.log();

    // Under another window manager the desktops are the same ones.
    session.startWindowManager(WindowManager::xfwm4);
    goTo(session, program, "3");
    ASSERT_TRUE(waitUntil([&] { return session.rootProperty("_NET_CURRENT_DESKTOP") == "2"; }))
        << program.log();
    goTo(session, program, "mail");
    EXPECT_TRUE(waitUntil([&] { return session.rootProperty("_NET_CURRENT_DESKTOP") == "0"; }))
        << program.log();
    EXPECT_EQ(program.stop(), 0);
}

TEST(Program, SaysInOneSentenceWhyItCannotRun) {
    const auto refusal = [](const Session& session, const Variables& additions = {}) {
        const auto output = session.run({programUnderTest()}, additions);
        EXPECT_EQ(output.status, 1);
        return output.text;
    };
    {
        const XSession session(WindowManager::none);
        EXPECT_EQ(refusal(session, {{"LUMNARA_PLATFORM", "windows"}}),
                  "Lumnara: LUMNARA_PLATFORM can be \"simulated\" or nothing, not \"windows\".\n");
        EXPECT_EQ(refusal(session, {{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}}),
                  "Lumnara: There is no display to run on. Start Lumnara inside a desktop session.\n");
        EXPECT_EQ(refusal(session, {{"DISPLAY", ":4000"}}),
                  "Lumnara: There is no display to run on. Start Lumnara inside a desktop session.\n");
    }
    {
        const XSession session(WindowManager::openbox);
        Program program(session);
        program.start();
        const auto second = session.start({programUnderTest()});
        EXPECT_EQ(second->waitForExit(), 1);
        EXPECT_EQ(program.count("Lumnara: Another Lumnara runs already."), 1) << program.log();
        EXPECT_EQ(program.stop(), 0);
    }
}

TEST(Program, RunsOnASimulatedMacWhereNoWindowManagerKnowsDesktops) {
    XSession session(WindowManager::none);
    Program program(session);
    program.start();
    EXPECT_EQ(program.count("ready on simulated, desktops: 10, displays: 2"), 1) << program.log();
    session.movePointer(300, 400);
    // The ground of the left screen, beside its windows: each Space has a colour of its own there, and the
    // Board, which may still be in sight, none.
    const auto ground = [&]() -> std::uint32_t {
        const std::uint32_t color = session.pixel(75, 560);
        const auto [least, most] = std::minmax({color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF});
        return most - least > 30 ? color : 0;
    };
    ASSERT_TRUE(waitUntil([&] { return ground() != 0; }));
    const std::uint32_t first = ground();
    nameCurrent(session, program, "Mail");
    goTo(session, program, "3");
    EXPECT_TRUE(waitUntil([&] { return ground() != 0 && ground() != first; })) << program.log();
    goTo(session, program, "mail");
    EXPECT_TRUE(waitUntil([&] { return ground() == first; })) << program.log();
    EXPECT_EQ(program.stop(), 0);
    EXPECT_EQ(program.file("desktops.json").parent_path().filename(), "simulated")
        << "what it learns there is kept apart";
}

TEST(Program, WaitsForAWindowManagerThatIsYetToCome) {
    XSession session(WindowManager::none);
    const Program program(session);
    const auto child = session.start({programUnderTest()});
    session.startWindowManager(WindowManager::openbox);
    EXPECT_TRUE(waitUntil([&] { return program.count("Lumnara: ready on Openbox") == 1; })) << program.log();
    child->send(SIGTERM);
    EXPECT_EQ(child->waitForExit(), 0);
}

TEST(Program, SetsADamagedFileAsideAndGoesOn) {
    XSession session(WindowManager::openbox);
    Program program(session);
    program.start();
    nameCurrent(session, program, "Mail");
    ASSERT_TRUE(waitUntil([&] { return !program.file("desktops.json").empty(); }));
    EXPECT_EQ(program.stop(), 0);

    const auto file = program.file("desktops.json");
    std::ofstream(file) << "{ \"schemaVersion\": 2, \"desk";
    program.start();
    nameCurrent(session, program, "Writing");
    EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(file); }));
    EXPECT_EQ(program.stop(), 0);

    int aside = 0;
    for (const auto& entry : std::filesystem::directory_iterator(file.parent_path()))
        aside += entry.path().filename().string().starts_with("desktops.json.corrupt-");
    EXPECT_EQ(aside, 1);
    std::ifstream saved(file);
    const auto contents = nlohmann::json::parse(saved);
    ASSERT_EQ(contents["desktops"].size(), 1u) << contents.dump();
    EXPECT_EQ(contents["desktops"].front()["name"], "Writing");
}

} // namespace
} // namespace lumnara::testing
