// How long a user waits: from the start of the program to its shortcut, and from the shortcut to the painted
// Board. Measured from outside, on an X server of its own, by what the screen shows.

#include "bench/Bench.h"
#include "tests/session/Session.h"

#include <X11/keysym.h>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <thread>
#include <xcb/xcb.h>

namespace lumnara::bench {
namespace {

using testing::Child;
using testing::waitUntil;
using testing::WindowManager;
using testing::XSession;

constexpr int starts = 7;
constexpr int openings = 25;
/// Until a user gets to the first opening, the program has had time for itself.
constexpr std::chrono::seconds idleSeconds{2};

/// The pixels of a small part of the screen.
std::vector<std::uint8_t> pixels(const XSession& session, std::int16_t x, std::int16_t y) {
    const auto cookie =
        xcb_get_image(session.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, session.root(), x, y, 48, 48, ~0u);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(session.connection(), cookie, nullptr), &std::free);
    if (!reply) throw std::runtime_error("the screen could not be read");
    const auto* data = xcb_get_image_data(reply.get());
    return {data, data + xcb_get_image_data_length(reply.get())};
}

/// What the monitor L shows where the Board has its ground and, near the top, its query.
std::vector<std::uint8_t> boardArea(const XSession& session) {
    auto area = pixels(session, 600, 60);
    const auto below = pixels(session, 620, 500);
    area.insert(area.end(), below.begin(), below.end());
    return area;
}

void require(bool condition, const char* what) {
    if (!condition) throw std::runtime_error(what);
}

/// Acts, then looks without a pause until the condition holds; up to ten seconds.
template <class Action, class Condition>
double millisecondsUntil(Action&& action, Condition&& condition, const char* what) {
    const auto start = std::chrono::steady_clock::now();
    action();
    for (;;) {
        const double elapsed =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        if (condition()) return elapsed;
        require(elapsed < 10000, what);
    }
}

class StartBench {
public:
    StartBench() : session_(WindowManager::i3) { session_.openWindow("A window"); }

    void run() {
        Report report("start");
        std::vector<double> ready;
        for (int i = 0; i < starts; ++i) {
            ready.push_back(start());
            if (i + 1 < starts) stop();
        }
        report.add("ready_ms", medianOf(ready), "from exec to the registered shortcut");

        session_.movePointer(640, 790);
        std::this_thread::sleep_for(idleSeconds);
        closed_ = boardArea(session_);
        std::vector<double> paint;
        for (int i = 0; i < openings; ++i) paint.push_back(open());
        report.line("first_board_paint_ms", paint.front(), "the first opening after the start");
        const double first = paint.front();
        paint.erase(paint.begin());
        report.add("first_board_vs_warm", first / medianOf(paint), "the first opening, in warm ones");
        report.add("board_paint_ms", medianOf(paint),
                   "from the Option+1 key event to the painted Board, warm");
        report.line("board_paint_worst_ms", *std::max_element(paint.begin(), paint.end()));
        report.add("rss_mib", residentMebibytes(), "after " + std::to_string(openings) + " openings");
        stop();
    }

private:
    double start() {
        const auto before = readyLines();
        return millisecondsUntil([&] { child_ = session_.start({testing::programUnderTest()}); },
                                 [&] { return readyLines() > before; }, "the program did not get ready");
    }

    void stop() {
        child_->send(SIGTERM);
        require(child_->waitForExit() == 0, "the program did not stop cleanly");
        child_.reset();
    }

    int readyLines() const {
        std::ifstream log(session_.folder() / "lumnara.log");
        int count = 0;
        for (std::string line; std::getline(log, line);) count += line.starts_with("Lumnara: ready");
        return count;
    }

    double open() {
        const double elapsed =
            millisecondsUntil([&] { session_.pressKey(XK_1, {XK_Alt_L}); },
                              [&] {
                                  const auto now = boardArea(session_);
                                  const auto half = static_cast<std::ptrdiff_t>(now.size() / 2);
                                  return !std::equal(now.begin(), now.begin() + half, closed_.begin()) &&
                                         !std::equal(now.begin() + half, now.end(), closed_.begin() + half);
                              },
                              "the Board was not painted");
        session_.pressKey(XK_Escape);
        require(waitUntil([&] { return boardArea(session_) == closed_; }), "the Board did not close");
        return elapsed;
    }

    double residentMebibytes() const {
        std::ifstream status("/proc/" + std::to_string(child_->pid()) + "/status");
        for (std::string line; std::getline(status, line);)
            if (line.starts_with("VmRSS:")) return std::stod(line.substr(6)) / 1024.0;
        throw std::runtime_error("the program's memory could not be read");
    }

    XSession session_;
    std::unique_ptr<Child> child_;
    std::vector<std::uint8_t> closed_;
};

} // namespace
} // namespace lumnara::bench

int main() {
    lumnara::bench::StartBench().run();
    return 0;
}
