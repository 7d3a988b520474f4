// A walk through the main job in a session of its own: two monitors, i3, a few windows, and Lumnara driven by
// key events as a person would. Prints what was done and what the window manager showed, leaves pictures,
// and exits with 1 at the first step whose outcome the display does not show.

#include "tests/session/Session.h"

#include <X11/keysym.h>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace lumnara::testing {
namespace {

using Clock = std::chrono::steady_clock;

struct Target {
    std::string monitor;
    std::string workspace;
};

class Tour {
public:
    Tour(std::string program, std::filesystem::path pictures)
        : session_(XSession::Options{WindowManager::i3, 4, bar}),
          program_(std::move(program)),
          pictures_(std::move(pictures)) {
        std::filesystem::create_directories(pictures_);
    }

    void run() {
        openWindows();
        startProgram();
        nameDesktops("L", 300, {"Mail", "Writing"});
        nameDesktops("R", 1600, {"Music", "Release notes"});
        jump("L", 300, "wr", {"L", "3: Writing"});
        jump("L", 300, "rel", {"R", "4: Release notes"}, Reach::byTab);
        jump("R", 1600, "mu", {"R", "2: Music"});
        jump("L", 300, "ml", {"L", "1: Mail"});
        restartProgram();
        jump("R", 1600, "notes", {"R", "4: Release notes"});
        jump("L", 300, "wr", {"L", "3: Writing"});
        linkFirstTiles("Mail");
        jumpOnBoth("ml", {{"L", "1: Mail"}, {"R", "2: Mail"}});
        stopProgram();
        std::printf("\nEvery step showed its target. The pictures are in %s.\n", pictures_.c_str());
    }

private:
    static constexpr const char* bar = "bar {\n    tray_output L\n}\n";

    void openWindows() {
        const std::vector<Target> desktops = {{"L", "1"}, {"L", "3"}, {"R", "2"}, {"R", "4"}};
        for (const auto& desktop : desktops) {
            i3("focus output " + desktop.monitor + "; workspace " + desktop.workspace);
            session_.openWindow("Window on " + desktop.workspace);
        }
        i3("focus output R; workspace 2");
        i3("focus output L; workspace 1");
        report("i3 with two monitors, two desktops each, a window on every one", 0);
    }

    void startProgram() {
        const auto start = Clock::now();
        child_ = session_.start({program_});
        // Ready is what the program says once its shortcut is registered.
        expect([this] { return logged("Lumnara: ready") > readyLines_; }, "the program is ready");
        ++readyLines_;
        report("started " + std::filesystem::path(program_).filename().string(), milliseconds(start));
    }

    void stopProgram() {
        child_->send(SIGTERM);
        if (child_->waitForExit() != 0) throw std::runtime_error("the program did not stop cleanly");
        child_.reset();
    }

    void restartProgram() {
        const auto start = Clock::now();
        stopProgram();
        report("stopped the program", milliseconds(start));
        startProgram();
    }

    void openBoard(int pointerX) {
        session_.movePointer(pointerX, 600);
        expect([this] { return session_.awaitFreeKeyboard(); }, "the keyboard is free");
        const auto start = Clock::now();
        session_.pressKey(XK_1, {XK_Alt_L});
        expect([this] { return logged("Lumnara Board: open on") > boards_; }, "the Board is open");
        ++boards_;
        report("Option+1 opened the Board", milliseconds(start));
    }

    /// Names the desktops of one monitor's Board from its first tile on.
    void nameDesktops(const std::string& monitor, int pointerX, const std::vector<std::string>& names) {
        openBoard(pointerX);
        // The current desktop is selected at the start; the first one is what is wanted.
        for (std::size_t i = 0; i < 9; ++i) session_.pressKey(XK_Left);
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (i > 0) session_.pressKey(XK_Right);
            const auto start = Clock::now();
            session_.pressKey(XK_Return, {XK_Super_L});
            type(names[i]);
            session_.pressKey(XK_Return);
            expect([&] { return workspaceOn(monitor, names[i]); }, "i3 shows the name " + names[i]);
            report("named a desktop of " + monitor + " \"" + names[i] + "\"", milliseconds(start));
        }
        picture("named on " + monitor);
        session_.pressKey(XK_Escape);
        expect([this] { return session_.awaitFreeKeyboard(); }, "the Board is closed");
    }

    /// From the Board under the pointer, or from the next monitor's.
    enum class Reach { underPointer, byTab };

    void jump(const std::string& monitor, int pointerX, const std::string& letters, const Target& target,
              Reach reach = Reach::underPointer) {
        openBoard(pointerX);
        if (reach == Reach::byTab) session_.pressKey(XK_Tab);
        type(letters);
        picture("typed " + letters);
        const auto start = Clock::now();
        session_.pressKey(XK_Return);
        expect([&] { return visibleOn(target.monitor) == target.workspace; },
               target.monitor + " shows \"" + target.workspace + "\"");
        report("typed " + std::string(reach == Reach::byTab ? "Tab, " : "") + "\"" + letters +
                   "\" and Return on " + monitor,
               milliseconds(start));
        picture("on " + target.workspace.substr(3));
    }

    /// Turns links on in the menu of a tile, and drags the first tile of L onto that of R, which takes its
    /// name.
    void linkFirstTiles(const std::string& name) {
        constexpr int tileX = 300, tileY = 360;
        openBoard(300);
        session_.pressKey(XK_l, {XK_Super_L});
        expect([this] { return logged("Lumnara menu tracking began") == 1; }, "the tile's menu is open");
        picture("menu of a tile");
        session_.pressKey(XK_Up);
        session_.pressKey(XK_Return);
        expect([this] { return logged("Lumnara menu tracking ended") == 1; }, "the menu is closed");
        const auto start = Clock::now();
        session_.drag(tileX, tileY, 1280 + tileX, tileY);
        expect([&] { return workspaceOn("R", name); }, "R has the name " + name);
        report("dragged \"" + name + "\" onto a desktop of R", milliseconds(start));
        picture("linked " + name);
        session_.pressKey(XK_Escape);
        expect([this] { return session_.awaitFreeKeyboard(); }, "the Board is closed");
    }

    void jumpOnBoth(const std::string& letters, const std::vector<Target>& targets) {
        openBoard(300);
        type(letters);
        const auto start = Clock::now();
        session_.pressKey(XK_Return);
        for (const Target& target : targets)
            expect([&] { return visibleOn(target.monitor) == target.workspace; },
                   target.monitor + " shows \"" + target.workspace + "\"");
        report("typed \"" + letters + "\" and Return on L, both moved", milliseconds(start));
        picture("on both");
    }

    void type(const std::string& text) {
        for (const char c : text) {
            const auto keysym = static_cast<std::uint32_t>(static_cast<unsigned char>(std::tolower(c)));
            if (std::isupper(static_cast<unsigned char>(c)))
                session_.pressKey(keysym, {XK_Shift_L});
            else
                session_.pressKey(keysym);
        }
    }

    nlohmann::json workspaces() const {
        return nlohmann::json::parse(session_.run({"i3-msg", "-t", "get_workspaces"}).text);
    }
    void i3(const std::string& command) const {
        if (session_.run({"i3-msg", command}).status != 0) throw std::runtime_error("i3 refused: " + command);
    }
    bool workspaceOn(const std::string& monitor, const std::string& name) const {
        for (const auto& w : workspaces())
            if (w["output"] == monitor && w["name"].get<std::string>().ends_with(": " + name)) return true;
        return false;
    }
    std::string visibleOn(const std::string& monitor) const {
        for (const auto& w : workspaces())
            if (w["output"] == monitor && w["visible"] == true) return w["name"];
        return {};
    }

    int logged(const std::string& line) const {
        std::ifstream log(session_.folder() / (std::filesystem::path(program_).filename().string() + ".log"));
        int count = 0;
        for (std::string text; std::getline(log, text);) count += text.starts_with(line);
        return count;
    }

    void expect(const std::function<bool()>& condition, const std::string& what) {
        if (waitUntil(condition, 5)) return;
        picture("failed");
        report("FAILED: not seen within 5 s: " + what, 5000);
        throw std::runtime_error("the display did not show it: " + what);
    }

    static double milliseconds(Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }

    void report(const std::string& what, double elapsed) {
        std::string shown;
        for (const auto& w : workspaces())
            shown += fmt::format("{}{}{}:\"{}\"", shown.empty() ? "" : "  ", w["visible"] == true ? "*" : "",
                                 w["output"].get<std::string>(), w["name"].get<std::string>());
        std::printf("%2d. %-52s %7.1f ms   i3: %s\n", ++step_, what.c_str(), elapsed, shown.c_str());
        std::fflush(stdout);
    }

    void picture(const std::string& name) {
        std::string file = fmt::format("{:02}-{}.png", step_, name);
        for (char& c : file) c = c == ' ' ? '-' : c;
        session_.screenshot(pictures_ / file);
    }

    XSession session_;
    std::string program_;
    std::filesystem::path pictures_;
    std::unique_ptr<Child> child_;
    int step_ = 0;
    int boards_ = 0;
    int readyLines_ = 0;
};

} // namespace
} // namespace lumnara::testing

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "Usage: tour PROGRAM FOLDER\n");
        return 2;
    }
    try {
        lumnara::testing::Tour(std::filesystem::absolute(arguments[1]), arguments[2]).run();
        return 0;
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    }
}
