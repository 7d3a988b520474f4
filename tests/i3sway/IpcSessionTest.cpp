#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/base/Log.h"
#include "core/model/SpaceKitError.h"
#include "core/platform/i3sway/IpcDesktopArranging.h"
#include "core/platform/i3sway/IpcSpaceActivator.h"
#include "core/platform/i3sway/IpcSpaceProvider.h"
#include "core/platform/i3sway/SwayScreens.h"
#include "core/platform/linux/WindowManagerArranger.h"
#include "tests/i3sway/ScriptedServer.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

constexpr std::uint32_t workspaceEvent = 0x80000000;
constexpr std::uint32_t outputEvent = 0x80000001;

std::string output(const std::string& name, int x, const std::string& more = {}) {
    return R"({"active":true,"name":")" + name + R"(","rect":{"x":)" + std::to_string(x) +
           R"(,"y":0,"width":1280,"height":800})" + more + "}";
}
std::string workspace(int id, const std::string& name, const std::string& output, bool visible,
                      bool focused = false) {
    const auto truth = [](bool value) { return value ? std::string("true") : "false"; };
    return R"({"id":)" + std::to_string(id) + R"(,"name":")" + name + R"(","output":")" + output +
           R"(","visible":)" + truth(visible) + R"(,"focused":)" + truth(focused) + "}";
}

class IpcSessionTest : public ::testing::Test {
protected:
    IpcSessionTest() {
        oldSink = setLogSink([this](std::string_view line) { logged += std::string(line) + "\n"; });
        IpcSession::Setup setup;
        setup.ipc.windowManager = "i3";
        setup.ipc.findSocket = [this] { return (folder / "ipc.sock").string(); };
        setup.ipc.events = {"workspace"};
        setup.ipc.patience = 0.2;
        setup.registryFile = folder / "workspaces.json";
        setup.identify = SwayScreens::identity;
        session = std::make_unique<IpcSession>(loop, std::move(setup));
        screens = std::make_unique<SwayScreens>(*session);
        provider = std::make_unique<IpcSpaceProvider>(loop, *session, *screens);
    }
    ~IpcSessionTest() override {
        session.reset();
        setLogSink(oldSink);
    }

    ScriptedServer::Answer answer(std::uint32_t type, const std::string& payload) {
        const std::lock_guard lock(mutex);
        if (hanging) return {};
        if (type == 2) return {frame(type, R"({"success":true})")};
        if (type == 0) commands.push_back(payload);
        if (type == 0 && hangsAtCommands) hanging = true;
        if (hanging) return {};
        if (type == 0) return {frame(type, outcome)};
        if (type != 1) return {frame(type, outputs)};
        std::string bytes = frame(type, workspaces);
        if (!workspacesBehind.empty()) {
            bytes += frame(workspaceEvent, R"({"change":"focus"})");
            workspaces = std::exchange(workspacesBehind, {});
        }
        return {bytes};
    }
    void show(const std::string& theOutputs, const std::string& theWorkspaces) {
        const std::lock_guard lock(mutex);
        outputs = "[" + theOutputs + "]";
        workspaces = "[" + theWorkspaces + "]";
    }
    void showTwo() {
        show(output("R", 1280) + "," + output("L", 0), workspace(1, "1", "L", true) + "," +
                                                           workspace(2, "2", "R", false) + "," +
                                                           workspace(3, "3", "R", true, true));
    }
    bool sawCommands(std::size_t count) {
        return loop.runUntil(
            [&] {
                const std::lock_guard lock(mutex);
                return commands.size() >= count;
            },
            5);
    }
    SpaceSnapshot snapshot() { return provider->snapshot(); }

    TemporaryFolder folder;
    async::PollLoop loop;
    async::Repeating pulse{loop, 0.002, [] {}};
    std::mutex mutex;
    std::string outputs = "[]";
    std::string workspaces = "[]";
    /// What there is right after the next answer, with an event between the two.
    std::string workspacesBehind;
    std::string outcome = R"([{"success":true}])";
    std::vector<std::string> commands;
    bool hanging = false;
    bool hangsAtCommands = false;
    std::string logged;
    LogSink oldSink;
    ScriptedServer server{folder / "ipc.sock",
                          [this](auto type, auto& payload) { return answer(type, payload); }};
    std::unique_ptr<IpcSession> session;
    std::unique_ptr<SwayScreens> screens;
    std::unique_ptr<IpcSpaceProvider> provider;
};

TEST_F(IpcSessionTest, ReadsWhatEachDisplayShows) {
    showTwo();
    const SpaceSnapshot read = snapshot();
    ASSERT_EQ(read.displays.size(), 2U);
    EXPECT_EQ(read.displays[0].display.uuid, "L");
    ASSERT_EQ(read.displays[1].spaces.size(), 2U);
    EXPECT_EQ(read.displays[1].currentID, read.displays[1].spaces[1].id);
    EXPECT_EQ(read.displays[1].spaces[1].kind, SpaceKind::user);
    EXPECT_EQ(read.focusedDisplay, DisplayID{"R"});
    EXPECT_EQ(provider->menuBarDisplay(), read.focusedDisplay);
    EXPECT_EQ(provider->currentSpace({"r"}), read.displays[1].currentID);
    EXPECT_EQ(provider->currentSpace({"X"}), std::nullopt);
    EXPECT_EQ(snapshot().displays, read.displays) << "nothing changes by reading";
}

TEST_F(IpcSessionTest, SurvivesAMonitorInTheMidstOfPlugging) {
    // An output without a workspace, one whose workspace shows nowhere, and a workspace on no output.
    show(output("L", 0) + "," + output("R", 1280) + "," + output("S", 2560),
         workspace(1, "1", "L", true, true) + "," + workspace(2, "2", "R", false) + "," +
             workspace(3, "3", "gone", true));
    const SpaceSnapshot read = snapshot();
    ASSERT_EQ(read.displays.size(), 1U);
    EXPECT_EQ(read.displays[0].spaces.size(), 1U);

    show("", workspace(1, "1", "L", true, true));
    server.send(frame(outputEvent, R"({"change":"unspecified"})"));
    EXPECT_TRUE(loop.runUntil([&] { return session->read().empty(); }, 5));
    EXPECT_THROW(snapshot(), SpaceKitError);
    EXPECT_EQ(provider->currentSpace({"L"}), std::nullopt);
}

TEST_F(IpcSessionTest, KnowsMonitorsByWhatTheyAre) {
    const std::string dell = R"(,"make":"Acme","model":"U27","serial":"8F3K2","scale":1.5)";
    const std::string unknown = R"(,"make":"Unknown","model":"Unknown","serial":"Unknown")";
    show(output("DP-1", 0, dell) + "," + output("DP-2", 1280, dell) + "," + output("DP-3", 2560, unknown),
         workspace(1, "1", "DP-1", true) + "," + workspace(2, "2", "DP-2", true) + "," +
             workspace(3, "3", "DP-3", true, true));
    const auto read = screens->screens();
    ASSERT_EQ(read.size(), 3U);
    EXPECT_EQ(read[0], (ScreenInfo{.uuid = "Acme U27 8F3K2",
                                   .connector = "DP-1",
                                   .name = "Acme U27 (DP-1)",
                                   .frame = {0, 0, 1280, 800},
                                   .scale = 1.5}));
    EXPECT_EQ(read[1].uuid, "Acme U27 8F3K2 DP-2") << "two of a kind";
    EXPECT_EQ(read[2].uuid, "DP-3");
    EXPECT_EQ(read[2].name, "DP-3");
    EXPECT_EQ(snapshot().displays[1].display.uuid, read[1].uuid);
    EXPECT_EQ(snapshot().displays[0].name, "Acme U27 (DP-1)");
}

TEST_F(IpcSessionTest, SaysWhatWasRefused) {
    showTwo();
    const Space one = snapshot().displays[0].spaces[0];
    outcome = R"([{"success":false,"error":"No."}])";
    const std::vector<PublishedDesktop> named{{one.uuid, one.id, {"L"}, "Mail \"in\""}};
    session->publish(named);
    ASSERT_TRUE(loop.runUntil([&] { return !snapshot().displays.empty() && !logged.empty(); }, 5));
    const std::string command = R"(rename workspace "1" to "1: Mail \"in\"")";
    EXPECT_EQ(commands, (std::vector{command, command}))
        << "once more, for the case that it was renamed meanwhile";
    EXPECT_EQ(logged, "Lumnara i3: \"1\" was not renamed to \"1: Mail \"in\"\": No.\n");
    snapshot();
    session->publish(named);
    snapshot();
    EXPECT_EQ(commands.size(), 2U);
}

TEST_F(IpcSessionTest, PublishesWithoutWaitingAndTellsTheNextWindowManager) {
    showTwo();
    const Space one = snapshot().displays[0].spaces[0];
    {
        const std::lock_guard lock(mutex);
        hanging = true;
    }
    const auto start = loop.now();
    session->publish({{one.uuid, one.id, {"L"}, "Mail"}});
    EXPECT_LT(loop.now() - start, std::chrono::milliseconds(100));
    EXPECT_THROW(snapshot(), WindowManagerError);
    session->publish({{one.uuid, one.id, {"L"}, "Post"}});
    EXPECT_THROW(snapshot(), WindowManagerError);
    {
        const std::lock_guard lock(mutex);
        hanging = false;
        commands.clear();
    }
    server.closeConnections();
    ASSERT_TRUE(loop.runUntil([&] { return session->ipc().connected(); }, 5));
    snapshot();
    ASSERT_TRUE(sawCommands(1));
    EXPECT_EQ(commands, std::vector<std::string>{R"(rename workspace "1" to "1: Post")"});
}

TEST_F(IpcSessionTest, ActivatesOnTheRightOutput) {
    showTwo();
    const DisplaySpaces right = snapshot().displays[1];
    IpcSpaceActivator activator(*session);
    const auto activate = [&](const Space& target, const DisplayID& display) {
        std::string ended;
        const auto run = [](SpaceActivator& activator, const Space& target, const DisplayID& display,
                            std::string& ended) -> async::Task<> {
            try {
                co_await activator.activate(target, display);
                ended = "done";
            } catch (const WindowManagerError& error) {
                ended = error.sentence();
            }
        };
        const auto handle = async::spawn(loop, run(activator, target, display, ended));
        EXPECT_TRUE(loop.runUntil([&] { return !ended.empty(); }, 5));
        return ended;
    };
    workspacesBehind = "[" + workspace(2, "2", "R", true, true) + "]";
    EXPECT_EQ(activate(right.spaces[0], {"r"}), "done");
    EXPECT_EQ(commands,
              std::vector<std::string>{R"(focus output "R"; workspace --no-auto-back-and-forth "2")"});
    EXPECT_EQ(provider->currentSpace({"R"}), right.spaces[0].id) << "as it is after the event";
    EXPECT_EQ(activate(right.spaces[0], {"X"}), "i3 refused a command: it has no such output.");
    EXPECT_EQ(activate(Space{}, {"R"}), "i3 refused a command: it has no such workspace.");
    outcome = R"([{"success":true},{"success":false,"error":"not now"}])";
    EXPECT_EQ(activate(right.spaces[0], {"R"}), "i3 refused a command: not now.");
    {
        const std::lock_guard lock(mutex);
        hanging = true;
    }
    const auto start = loop.now();
    EXPECT_EQ(activate(right.spaces[0], {"R"}), "done") << "its patience is over";
    EXPECT_GE(loop.now() - start, std::chrono::milliseconds(300));
    server.closeConnections();
    EXPECT_EQ(activate(right.spaces[0], {"R"}),
              "The connection to i3 was lost. Lumnara keeps trying to reach it.");
}

async::Task<> noteOutcomes(DesktopArranger& arranger, std::vector<SpaceID> wish,
                           std::optional<ReorderOutcome>& reordered, std::optional<RemoveOutcome>& removed) {
    const DisplayID display{"R"};
    const std::vector<SpaceID> last{wish.back()};
    reordered = co_await arranger.reorder(display, wish);
    try {
        removed = co_await arranger.remove(last, display);
    } catch (const WindowManagerError&) {
        removed = RemoveOutcome{.removedIDs = {}, .stoppedBecause = "not begun"};
    }
}

TEST_F(IpcSessionTest, SaysWhatKeptDesktopsFromBeingArranged) {
    showTwo();
    const std::vector<Space> before = snapshot().displays[1].spaces;
    WindowManagerArranger arranger(*provider, std::make_unique<IpcDesktopArranging>(*session));
    std::optional<ReorderOutcome> reordered;
    std::optional<RemoveOutcome> removed;
    const auto run = [&] {
        reordered.reset();
        removed.reset();
        const auto handle =
            async::spawn(loop, noteOutcomes(arranger, {before[1].id, before[0].id}, reordered, removed));
        return loop.runUntil([&] { return removed.has_value(); }, 5);
    };
    const auto stopped = [&] { return reordered->stoppedBecause.value_or(""); };

    outcome = R"([{"success":false,"error":"No"}])";
    ASSERT_TRUE(run());
    EXPECT_TRUE(commands.at(0).starts_with("rename workspace \"3\" to ")) << commands.at(0);
    EXPECT_EQ(stopped(), "i3 refused a command: No.");
    EXPECT_EQ(removed->stoppedBecause, "i3 did not remove the desktop.");

    outcome = R"([{"success":true}])"; // and yet nothing changes
    ASSERT_TRUE(run());
    EXPECT_EQ(stopped(), "i3 did not move desktop 1 to position 2.");
    EXPECT_EQ(reordered->performed, 0);
    EXPECT_EQ(removed->stoppedBecause, "i3 did not remove the desktop.");
    EXPECT_EQ(snapshot().displays[1].spaces, before);

    hangsAtCommands = true;
    ASSERT_TRUE(run());
    EXPECT_EQ(stopped(), "i3 is not answering. Lumnara keeps asking.");
    EXPECT_TRUE(removed->removedIDs.empty());
}

TEST_F(IpcSessionTest, TellsOnceOfWhatComesTogether) {
    showTwo();
    std::vector<WorkspaceEvent> events;
    const auto subscription =
        session->changed().subscribe([&](WorkspaceEvent event) { events.push_back(event); });
    using enum WorkspaceEvent;
    ASSERT_TRUE(loop.runUntil([&] { return session->ipc().connected() && events.size() == 2; }, 5));
    EXPECT_EQ(events, (std::vector{screenParametersDidChange, activeSpaceDidChange})) << "a new connection";
    events.clear();
    const std::string focus = frame(workspaceEvent, R"({"change":"focus","current":{"id":1,"name":"1"}})");
    server.send(focus + focus + focus);
    snapshot(); // reads them on the way, and tells of them later
    EXPECT_TRUE(events.empty());
    ASSERT_TRUE(loop.runUntil([&] { return !events.empty(); }, 5));
    EXPECT_EQ(events, std::vector{activeSpaceDidChange});
    events.clear();
    {
        const auto reading = session->changed().subscribe([this](WorkspaceEvent) { session->read(); });
        workspacesBehind = workspaces;
        server.send(focus);
        EXPECT_TRUE(loop.runUntil([&] { return events.size() == 2; }, 5)) << "it came behind the answer";
    }
    events.clear();
    server.send(frame(outputEvent, R"({"change":"unspecified"})") + focus);
    ASSERT_TRUE(loop.runUntil([&] { return !events.empty(); }, 5));
    EXPECT_EQ(events, (std::vector{screenParametersDidChange, activeSpaceDidChange}));
    events.clear();
    server.closeConnections();
    ASSERT_TRUE(loop.runUntil([&] { return !events.empty(); }, 5));
    EXPECT_EQ(events[0], activeSpaceDidChange) << "so that the failure shows";
}

} // namespace
} // namespace lumnara::testing
