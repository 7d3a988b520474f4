#include "core/platform/i3sway/IpcReplies.h"

#include "core/platform/i3sway/IpcFrames.h"
#include "core/text/Utf8.h"

#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

using nlohmann::json;

/// No layout nests deeper than this; a text that does would fill the memory.
constexpr int deepestNesting = 1000;

json parseBounded(std::string_view text, const json::parser_callback_t& keep) {
    try {
        // Window managers hand on whatever bytes a workspace was named with.
        if (text::isValidUtf8(text)) return json::parse(text, keep);
        return json::parse(text::sanitizedUtf8(text), keep);
    } catch (const json::exception& error) {
        throw IpcProtocolError(error.what());
    }
}

void checkNesting(int depth) {
    if (depth > deepestNesting) throw IpcProtocolError("a message that nests too deep");
}

json parseReply(std::string_view text) {
    return parseBounded(text, [](int depth, json::parse_event_t, json&) -> bool {
        checkNesting(depth);
        return true;
    });
}

/// Events carry the whole tree of their workspace, and of the one before it, which is left out.
json parseEvent(std::string_view text) {
    return parseBounded(text, [](int depth, json::parse_event_t event, json& parsed) -> bool {
        checkNesting(depth);
        return depth != 1 || event != json::parse_event_t::key || parsed != "old";
    });
}

const json& field(const json& object, const char* name) {
    if (!object.is_object()) throw IpcProtocolError("something else than an object");
    const auto found = object.find(name);
    if (found == object.end()) throw IpcProtocolError(std::string("a reply without ") + name);
    return *found;
}

const std::string& textIn(const json& object, const char* name) {
    const json& value = field(object, name);
    if (!value.is_string()) throw IpcProtocolError(std::string("no text in ") + name);
    return value.get_ref<const std::string&>();
}

bool flag(const json& object, const char* name) {
    const json& value = field(object, name);
    if (!value.is_boolean()) throw IpcProtocolError(std::string("no truth value in ") + name);
    return value.get<bool>();
}

double number(const json& object, const char* name) {
    const json& value = field(object, name);
    if (!value.is_number()) throw IpcProtocolError(std::string("no number in ") + name);
    return value.get<double>();
}

std::int64_t integer(const json& object, const char* name) {
    const json& value = field(object, name);
    if (!value.is_number_integer()) throw IpcProtocolError(std::string("no integer in ") + name);
    return value.get<std::int64_t>();
}

std::string textOrNone(const json& object, const char* name) {
    return object.contains(name) && object.at(name).is_string() ? object.at(name).get<std::string>() : "";
}

const json& array(const json& value) {
    if (!value.is_array()) throw IpcProtocolError("something else than an array");
    return value;
}

/// The nodes below a node; none where it has no such list.
std::vector<const json*> childrenOf(const json& node, std::initializer_list<const char*> lists) {
    std::vector<const json*> children;
    for (const char* list : lists)
        if (const auto found = node.find(list); found != node.end())
            for (const json& child : array(*found)) children.push_back(&child);
    return children;
}

IpcWorkspaceContents contentsOf(const json& workspace) {
    IpcWorkspaceContents contents{.id = integer(workspace, "id"), .containers = {}};
    for (const json* container : childrenOf(workspace, {"nodes", "floating_nodes"}))
        contents.containers.push_back(integer(*container, "id"));
    return contents;
}

IpcOutcome outcome(const json& reply) {
    return {.success = flag(reply, "success"), .error = textOrNone(reply, "error")};
}

/// By the id that a Wayland window gives, or the class that an X window does; desktop files go by either.
std::optional<RunningApp> applicationOf(const json& node) {
    std::string id;
    if (const auto given = node.find("app_id"); given != node.end() && given->is_string()) {
        id = given->get<std::string>();
    } else {
        const auto properties = node.find("window_properties");
        if (properties == node.end() || !properties->contains("class")) return std::nullopt;
        id = textIn(*properties, "class");
    }
    const auto pid = node.find("pid");
    const bool known = pid != node.end() && pid->is_number_integer();
    return RunningApp{known ? pid->get<std::int32_t>() : 0, id, id};
}

Rect rectOf(const json& value) {
    return {.x = number(value, "x"),
            .y = number(value, "y"),
            .width = number(value, "width"),
            .height = number(value, "height")};
}

IpcFocus focusOn(const json& node) {
    return {.container = node.contains("id") ? integer(node, "id") : 0, .application = applicationOf(node)};
}

/// The child that had the keyboard last, or null in a node without children.
const json* lastFocusedIn(const json& node) {
    const auto order = node.find("focus");
    if (order == node.end() || array(*order).empty()) return nullptr;
    for (const json* child : childrenOf(node, {"nodes", "floating_nodes"}))
        if (const auto id = child->find("id"); id != child->end() && *id == order->front()) return child;
    return nullptr;
}

} // namespace

std::vector<IpcWorkspaceReply> parseWorkspaces(std::string_view text) {
    const json reply = parseReply(text);
    std::vector<IpcWorkspaceReply> workspaces;
    for (const json& workspace : array(reply)) {
        workspaces.push_back({.id = integer(workspace, "id"),
                              .name = textIn(workspace, "name"),
                              .output = textIn(workspace, "output"),
                              .rect = workspace.contains("rect") ? rectOf(workspace.at("rect")) : Rect(),
                              .visible = flag(workspace, "visible"),
                              .focused = flag(workspace, "focused")});
    }
    return workspaces;
}

std::vector<IpcOutputReply> parseOutputs(std::string_view text) {
    const json reply = parseReply(text);
    std::vector<IpcOutputReply> outputs;
    for (const json& output : array(reply)) {
        if (!flag(output, "active")) continue;
        outputs.push_back({.name = textIn(output, "name"),
                           .rect = rectOf(field(output, "rect")),
                           .make = textOrNone(output, "make"),
                           .model = textOrNone(output, "model"),
                           .serial = textOrNone(output, "serial"),
                           .scale = output.contains("scale") ? number(output, "scale") : 1});
    }
    return outputs;
}

std::vector<IpcOutcome> parseOutcomes(std::string_view text) {
    const json reply = parseReply(text);
    std::vector<IpcOutcome> outcomes;
    for (const json& each : array(reply)) outcomes.push_back(outcome(each));
    return outcomes;
}

IpcOutcome parseOutcome(std::string_view text) { return outcome(parseReply(text)); }

IpcWorkspaceEvent parseWorkspaceEvent(std::string_view text) {
    const json event = parseEvent(text);
    IpcWorkspaceEvent parsed;
    parsed.change = textIn(event, "change");
    const auto current = event.find("current");
    if (current == event.end() || current->is_null()) return parsed;
    parsed.id = integer(*current, "id");
    parsed.name = textIn(*current, "name");
    const json* focused = &*current;
    while (const json* child = lastFocusedIn(*focused)) focused = child;
    parsed.focus = focusOn(*focused);
    return parsed;
}

std::string parseBindingEvent(std::string_view text) {
    const json event = parseEvent(text);
    return textIn(field(event, "binding"), "command");
}

IpcWindowEvent parseWindowEvent(std::string_view text) {
    const json event = parseEvent(text);
    return {.change = textIn(event, "change"), .window = focusOn(field(event, "container"))};
}

IpcFocus parseFocus(std::string_view text) {
    const json tree = parseReply(text);
    std::vector<const json*> left{&tree};
    while (!left.empty()) {
        const json& node = *left.back();
        left.pop_back();
        if (flag(node, "focused")) return focusOn(node);
        for (const json* child : childrenOf(node, {"nodes", "floating_nodes"})) left.push_back(child);
    }
    return {};
}

std::vector<IpcWorkspaceContents> parseContents(std::string_view text) {
    const json tree = parseReply(text);
    std::vector<IpcWorkspaceContents> contents;
    std::vector<const json*> left{&tree};
    while (!left.empty()) {
        const json& node = *left.back();
        left.pop_back();
        if (textOrNone(node, "type") == "workspace") {
            contents.push_back(contentsOf(node));
            continue;
        }
        for (const json* child : childrenOf(node, {"nodes"})) left.push_back(child);
    }
    return contents;
}

std::string parseConfig(std::string_view text) {
    const json reply = parseReply(text);
    return textIn(reply, "config");
}

} // namespace lumnara
