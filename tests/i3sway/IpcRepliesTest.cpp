#include "core/platform/i3sway/IpcReplies.h"
#include "core/platform/i3sway/IpcFrames.h"

#include <functional>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

TEST(IpcReplies, ReadI3) {
    const auto workspaces =
        parseWorkspaces(R"([{"id":94449591493856,"num":2,"name":"2: \"web\"","visible":true,"focused":true,)"
                        R"("rect":{"x":1280,"y":0,"width":1280,"height":800},"output":"R","urgent":false}])");
    ASSERT_EQ(workspaces.size(), 1U);
    EXPECT_EQ(workspaces[0].id, 94449591493856);
    EXPECT_EQ(workspaces[0].name, "2: \"web\"");
    EXPECT_EQ(workspaces[0].output, "R");
    EXPECT_TRUE(workspaces[0].visible && workspaces[0].focused);

    const auto outputs = parseOutputs(
        R"([{"name":"xroot-0","active":false,"primary":false,"rect":{"x":0,"y":0,"width":2560,"height":800},)"
        R"("current_workspace":null},{"name":"L","active":true,"primary":false,)"
        R"("rect":{"x":0,"y":0,"width":1280,"height":800},"current_workspace":"1"}])");
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(outputs[0].name, "L");
    EXPECT_EQ(outputs[0].rect, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(outputs[0].scale, 1);
}

TEST(IpcReplies, ReadSway) {
    const auto outputs = parseOutputs(
        R"([ { "id": 3, "type": "output", "rect": { "x": -1280, "y": 0, "width": 1280, "height": 720 },
             "name": "DP-1", "active": true, "make": "Acme", "model": "U2720Q", "serial": "8F3K2",
             "scale": 1.5, "focused": true, "modes": [ ] },
           { "name": "DP-2", "active": false, "make": "Acme", "model": "U2720Q", "serial": "9A" } ])");
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(outputs[0].make + outputs[0].model + outputs[0].serial, "AcmeU2720Q8F3K2");
    EXPECT_EQ(outputs[0].scale, 1.5);
    EXPECT_EQ(outputs[0].rect.x, -1280);

    const auto outcomes = parseOutcomes(
        R"([ { "success": true }, { "success": false, "parse_error": true, "error": "no output" } ])");
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_TRUE(outcomes[0].success);
    EXPECT_EQ(outcomes[1].error, "no output");
    EXPECT_EQ(parseBindingEvent(R"({"change":"run","binding":{"command":"nop lumnara 3","symbols":["1"]}})"),
              "nop lumnara 3");
    EXPECT_EQ(parseConfig(R"({"config":"set $mod Mod4\n"})"), "set $mod Mod4\n");
}

TEST(IpcReplies, ReadEventsThatCarryATree) {
    std::string nodes = "[]";
    for (int i = 0; i < 60; ++i) nodes = R"([{"id":7,"name":"inner","nodes":)" + nodes + "}]";
    const auto event = parseWorkspaceEvent(R"({"change":"rename","current":{"nodes":)" + nodes +
                                           R"(,"id":12,"name":"new"},"old":null})");
    EXPECT_EQ(event.change, "rename");
    EXPECT_EQ(event.id, 12);
    EXPECT_EQ(event.name, "new");
    EXPECT_EQ(parseWorkspaceEvent(R"({"change":"reload","current":null})").id, 0);
}

TEST(IpcReplies, FindWhoHasTheKeyboard) {
    const auto treeWith = [](const std::string& window) {
        return R"({"focused":false,"nodes":[{"focused":false,"nodes":[],"floating_nodes":[)" + window +
               R"(]},{"focused":false,"nodes":[]}],"floating_nodes":[]})";
    };
    const std::string editor =
        R"({"id":5,"focused":true,"window_properties":{"class":"Editor","instance":"e"},"nodes":[]})";
    const std::pair<std::string, std::optional<RunningApp>> windows[] = {
        {editor, RunningApp{0, "Editor", "Editor"}},
        {R"({"focused":true,"pid":7,"app_id":"foot","nodes":[]})", RunningApp{7, "foot", "foot"}},
        {R"({"focused":true,"app_id":null,"nodes":[]})", std::nullopt},
        {R"({"focused":false,"app_id":"foot"})", std::nullopt}};
    for (const auto& [window, application] : windows)
        EXPECT_EQ(parseFocus(treeWith(window)).application, application) << window;

    const auto focused = parseWorkspaceEvent(
        R"({"change":"focus","current":{"id":1,"name":"1","focus":[3,2],"nodes":[{"id":2}],"floating_nodes":)"
        R"([{"id":3,"focus":[5],"nodes":[)" +
        editor + "]}]}}");
    EXPECT_EQ(focused.focus.container, 5);
    EXPECT_EQ(focused.focus.application, windows[0].second);
    EXPECT_EQ(parseWindowEvent(R"({"change":"close","container":)" + editor + "}").window.container, 5);
}

TEST(IpcReplies, KeepBytesThatAreNoUtf8FromEndingTheReading) {
    const auto workspaces = parseWorkspaces(
        "[{\"id\":1,\"name\":\"bad\xff\xc3x\",\"output\":\"L\",\"visible\":true,\"focused\":false}]");
    ASSERT_EQ(workspaces.size(), 1U);
    EXPECT_EQ(workspaces[0].name, "bad\uFFFD\uFFFDx");
}

TEST(IpcReplies, RefuseOtherShapes) {
    const std::function<void(std::string_view)> readers[] = {
        [](auto json) { parseWorkspaces(json); },     [](auto json) { parseOutputs(json); },
        [](auto json) { parseOutcomes(json); },       [](auto json) { parseOutcome(json); },
        [](auto json) { parseConfig(json); },         [](auto json) { parseBindingEvent(json); },
        [](auto json) { parseWorkspaceEvent(json); }, [](auto json) { parseFocus(json); },
        [](auto json) { parseWindowEvent(json); },
    };
    const std::string deep(std::size_t{1} << 20, '[');
    for (const auto& read : readers)
        for (const std::string& json :
             {std::string(), std::string("["), std::string("{]"), std::string("7"), std::string("[7]"),
              std::string("[{}]"), std::string("{\"config\":1}"), deep})
            EXPECT_THROW(read(json), IpcProtocolError) << json.substr(0, 20);

    const std::string good = R"([{"id":1,"name":"a","output":"L","visible":true,"focused":false}])";
    EXPECT_EQ(parseWorkspaces(good).size(), 1U);
    const std::pair<std::string, std::string> wrong[] = {
        {"1", "1.5"},    {"1", "\"1\""}, {"\"a\"", "null"},    {"true", "1"},
        {"false", "[]"}, {"\"L\"", "2"}, {"\"name\"", "\"n\""}};
    for (const auto& [from, to] : wrong) {
        std::string bad = good;
        bad.replace(bad.find(from), from.size(), to);
        EXPECT_THROW(parseWorkspaces(bad), IpcProtocolError) << bad;
    }
}

} // namespace
} // namespace lumnara
