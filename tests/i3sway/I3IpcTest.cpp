#include "core/platform/i3sway/I3Ipc.h"
#include "core/async/PollLoop.h"
#include "tests/i3sway/ScriptedServer.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

using Case = WindowManagerError::Case;

constexpr std::uint32_t workspaceEvent = 0x80000000;

std::string echo(std::string_view json) { return std::string(json); }

/// A window manager that knows no "output" event, as sway 1.7, and answers every other request with its
/// payload.
ScriptedServer::Answer obliging(std::uint32_t type, const std::string& payload) {
    if (type != 2) return {frame(type, payload)};
    return {frame(type, payload == "[\"output\"]" ? R"({"success":false})" : R"({"success":true})")};
}

struct Recorder : I3Ipc::Listener {
    void onConnected() override { log += "connected "; }
    void onLost() override { log += "lost "; }
    void onEvent(const IpcFrame& event) override {
        if (event.payload == "bad") throw IpcProtocolError("bad");
        log += event.payload + " ";
    }
    std::string log;
};

class I3IpcTest : public ::testing::Test {
protected:
    void serve(ScriptedServer::Script script) {
        server = std::make_unique<ScriptedServer>(folder / "ipc.sock", std::move(script));
    }
    void connect(double patience = 5) {
        ipc = std::make_unique<I3Ipc>(loop,
                                      I3Ipc::Setup{.windowManager = "i3",
                                                   .findSocket = [this] { return path; },
                                                   .events = {"workspace", "output", "shutdown"},
                                                   .patience = patience,
                                                   .firstRetry = 0.001,
                                                   .longestRetry = 0.01},
                                      listener);
    }
    bool runUntil(const std::function<bool()>& done) { return loop.runUntil(done, 10); }
    bool connected() {
        return runUntil([&] { return ipc->connected(); });
    }
    std::optional<WindowManagerError> failure() {
        try {
            ipc->ask(IpcType::workspaces, "x", echo);
            return std::nullopt;
        } catch (const WindowManagerError& error) {
            return error;
        }
    }
    static WindowManagerError error(Case which) { return {which, "i3"}; }

    TemporaryFolder folder;
    std::optional<std::string> path = (folder / "ipc.sock").string();
    async::PollLoop loop;
    /// Looks at what the server's thread did, which wakes nobody here.
    async::Repeating pulse{loop, 0.002, [] {}};
    Recorder listener;
    std::unique_ptr<ScriptedServer> server;
    std::unique_ptr<I3Ipc> ipc;
};

TEST_F(I3IpcTest, AsksBeforeAndAfterTheGreetingIsAnswered) {
    const std::string large(std::size_t{1} << 20, 'x');
    serve([&](std::uint32_t type, const std::string& payload) {
        return payload == "large" ? ScriptedServer::Answer{frame(type, large)} : obliging(type, payload);
    });
    connect();
    EXPECT_EQ(ipc->ask(IpcType::config, "at once", echo), "at once");
    EXPECT_TRUE(ipc->connected());
    EXPECT_EQ(ipc->ask(IpcType::outputs, "large", echo), large);
    EXPECT_EQ(server->accepted(), 1);
}

TEST_F(I3IpcTest, HearsEventsInTheOrderOfTheAnswers) {
    serve([](std::uint32_t type, const std::string& payload) -> ScriptedServer::Answer {
        if (type != 1) return obliging(type, payload);
        return {frame(workspaceEvent, "before") + frame(type, payload) + frame(workspaceEvent, "after")};
    });
    connect();
    ASSERT_TRUE(connected());
    const std::string answer =
        ipc->ask<std::string>(IpcType::workspaces, "", [](std::string_view) { return std::string("read"); });
    EXPECT_EQ(answer, "read");
    EXPECT_TRUE(listener.log.starts_with("connected before "));
    EXPECT_TRUE(runUntil([&] { return listener.log == "connected before after "; }));
}

TEST_F(I3IpcTest, TellsTheOutcomesOfCommandsWithoutWaiting) {
    serve([](std::uint32_t type, const std::string& payload) -> ScriptedServer::Answer {
        if (type != 0) return obliging(type, payload);
        if (payload == "quit") return {.bytes = {}, .close = true};
        return {frame(type, payload == "nonsense" ? "{}" : R"([{"success":false,"error":"no"}])")};
    });
    connect();
    std::string told;
    const auto note = [&](const std::vector<IpcOutcome>* outcomes) {
        told += outcomes ? outcomes->at(0).error + " " : "lost ";
    };
    ipc->run("one", note);
    ipc->run("two", note);
    EXPECT_EQ(told, "");
    EXPECT_TRUE(runUntil([&] { return told == "no no "; }));
    for (const char* command : {"quit", "nonsense"}) {
        told.clear();
        ipc->run(command, note);
        EXPECT_TRUE(runUntil([&] { return told == "lost "; })) << command;
        EXPECT_TRUE(connected());
    }
}

TEST_F(I3IpcTest, WaitsOnceForAWindowManagerThatHangs) {
    std::atomic<bool> hanging = false;
    serve([&](std::uint32_t type, const std::string& payload) -> ScriptedServer::Answer {
        return hanging ? ScriptedServer::Answer{} : obliging(type, payload);
    });
    connect(0.1);
    ASSERT_TRUE(connected());
    hanging = true;
    auto start = loop.now();
    EXPECT_EQ(failure(), error(Case::notAnswering));
    EXPECT_GE(loop.now() - start, std::chrono::milliseconds(100));
    // From now on nobody waits, also not once it is connected again and greeted in vain.
    for (const int connections : {1, 2}) {
        ASSERT_TRUE(runUntil([&] { return server->accepted() == connections; }));
        start = loop.now();
        for (int i = 0; i < 10; ++i) {
            ASSERT_EQ(failure(), error(Case::notAnswering));
            EXPECT_THROW(ipc->run("nop", [](const auto*) { FAIL(); }), WindowManagerError);
        }
        EXPECT_LT(loop.now() - start, std::chrono::milliseconds(100));
    }

    hanging = false;
    server->closeConnections();
    EXPECT_TRUE(connected());
    EXPECT_EQ(failure(), std::nullopt);
    EXPECT_EQ(listener.log, "connected lost connected ");
}

TEST_F(I3IpcTest, ComesBackAfterWhateverTheOtherEndSays) {
    const ScriptedServer::Answer nonsense[] = {
        {"HTTP/1.1 400 Bad Request\r\n\r\n"},
        {std::string("i3-ipc\xff\xff\xff\xff\1\0\0\0", 14)},
        {frame(3, "an answer to something else")},
        {frame(workspaceEvent, "bad")},
        {std::string(100000, '\0')},
        {.bytes = frame(1, "[1,2,3]").substr(0, 17), .close = true},
        {.bytes = {}, .close = true},
    };
    std::atomic<const ScriptedServer::Answer*> answer = nullptr;
    serve([&](std::uint32_t type, const std::string& payload) {
        return type == 1 && answer ? *answer : obliging(type, payload);
    });
    connect();
    ASSERT_TRUE(connected());
    for (const auto& each : nonsense) {
        listener.log.clear();
        answer = &each;
        EXPECT_EQ(failure(), error(Case::connectionLost)) << each.bytes;
        EXPECT_TRUE(runUntil([&] { return listener.log == "lost connected "; }))
            << each.bytes << listener.log;
    }
    // An answer too many ends the connection after the good one.
    const ScriptedServer::Answer twice{frame(1, "1") + frame(1, "2")};
    answer = &twice;
    EXPECT_EQ(failure(), std::nullopt);
    EXPECT_TRUE(runUntil([&] { return listener.log == "lost connected lost connected "; }));
    answer = nullptr;
    EXPECT_EQ(failure(), std::nullopt);
}

TEST_F(I3IpcTest, EndsTheConnectionWhenAnAnswerCannotBeRead) {
    serve(obliging);
    connect();
    ASSERT_TRUE(connected());
    const auto ask = [&] {
        ipc->ask<std::string>(IpcType::outputs, "",
                              [](std::string_view) -> std::string { throw IpcProtocolError("no"); });
    };
    EXPECT_THROW(ask(), WindowManagerError);
    EXPECT_FALSE(ipc->connected());
    EXPECT_TRUE(connected());
}

TEST_F(I3IpcTest, FindsTheSocketOfTheNextWindowManager) {
    path.reset();
    connect();
    EXPECT_EQ(failure(), error(Case::connectionLost));
    path = std::string(300, 'x'); // longer than any socket's path
    loop.runUntil([] { return false; }, 0.02);
    EXPECT_EQ(failure(), error(Case::connectionLost));

    serve(obliging);
    path = (folder / "ipc.sock").string();
    EXPECT_TRUE(connected());
    server.reset();
    EXPECT_TRUE(runUntil([&] { return !ipc->connected(); }));
    EXPECT_EQ(failure(), error(Case::connectionLost));

    path = (folder / "next.sock").string();
    server = std::make_unique<ScriptedServer>(folder / "next.sock", obliging);
    EXPECT_TRUE(connected());
    EXPECT_EQ(failure(), std::nullopt);
    EXPECT_EQ(listener.log, "connected lost connected ");
}

TEST_F(I3IpcTest, TakesAWindowManagerThatReadsNothingForHung) {
    std::atomic<bool> deaf = false;
    std::mutex stalled;
    serve([&](std::uint32_t type, const std::string& payload) {
        if (deaf) const std::lock_guard wait(stalled);
        return obliging(type, payload);
    });
    connect();
    ASSERT_TRUE(connected());
    std::unique_lock lock(stalled);
    deaf = true;
    int lost = 0;
    const std::string command(100000, 'x');
    EXPECT_THROW(for (int i = 0; i < 100; ++i)
                     ipc->run(command, [&](const auto* outcomes) { lost += !outcomes; }),
                 WindowManagerError);
    EXPECT_GT(lost, 0);
    EXPECT_EQ(failure(), error(Case::notAnswering));
    deaf = false;
    lock.unlock();
    EXPECT_TRUE(connected());
}

} // namespace
} // namespace lumnara::testing
