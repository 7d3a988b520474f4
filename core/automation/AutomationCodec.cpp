#include "core/automation/AutomationCodec.h"

#include "core/automation/AutomationStoreError.h"
#include "core/base/StrictJson.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

using nlohmann::json;

std::string textMember(const json& object, const char* name) {
    return StrictJson::text(StrictJson::member(object, name));
}

std::optional<std::string> optionalText(const json& object, const char* name) {
    const json* value = StrictJson::find(object, name);
    return value ? std::optional(StrictJson::text(*value)) : std::nullopt;
}

SessionOp decodeSessionOp(const json& value) {
    const auto op = sessionOpOf(StrictJson::text(value));
    if (!op) throw JsonError("an unknown session operation");
    return *op;
}

struct ActionForm {
    const char* name;
    AutomationAction (*decode)(const json& payload);
};

/// In the order of AutomationAction's cases.
const std::array<ActionForm, std::variant_size_v<AutomationAction>> actionForms = {{
    {"openApp",
     [](const json& p) -> AutomationAction {
         return OpenAppAction{textMember(p, "bundleID"), optionalText(p, "name")};
     }},
    {"openPath", [](const json& p) -> AutomationAction { return OpenPathAction{textMember(p, "path")}; }},
    {"openURL", [](const json& p) -> AutomationAction { return OpenURLAction{textMember(p, "url")}; }},
    {"runShortcut",
     [](const json& p) -> AutomationAction { return RunShortcutAction{textMember(p, "name")}; }},
    {"runShell", [](const json& p) -> AutomationAction { return RunShellAction{textMember(p, "script")}; }},
    {"appleScript",
     [](const json& p) -> AutomationAction { return AppleScriptAction{textMember(p, "source")}; }},
    {"pomodoro",
     [](const json& p) -> AutomationAction {
         return PomodoroAction{StrictJson::integer<int>(StrictJson::member(p, "minutes")),
                               StrictJson::integer<int>(StrictJson::member(p, "breakMinutes"))};
     }},
    {"session",
     [](const json& p) -> AutomationAction {
         return SessionAction{decodeSessionOp(StrictJson::member(p, "op")), optionalText(p, "name")};
     }},
    {"wait",
     [](const json& p) -> AutomationAction {
         return WaitAction{StrictJson::number(StrictJson::member(p, "seconds"))};
     }},
}};

json named(json payload, const std::optional<std::string>& name) {
    if (name) payload["name"] = *name;
    return payload;
}

struct PayloadEncoder {
    json operator()(const OpenAppAction& a) const { return named({{"bundleID", a.bundleID}}, a.name); }
    json operator()(const OpenPathAction& a) const { return {{"path", a.path}}; }
    json operator()(const OpenURLAction& a) const { return {{"url", a.url}}; }
    json operator()(const RunShortcutAction& a) const { return {{"name", a.name}}; }
    json operator()(const RunShellAction& a) const { return {{"script", a.script}}; }
    json operator()(const AppleScriptAction& a) const { return {{"source", a.source}}; }
    json operator()(const PomodoroAction& a) const {
        return {{"minutes", a.minutes}, {"breakMinutes", a.breakMinutes}};
    }
    json operator()(const SessionAction& a) const { return named({{"op", textOf(a.op)}}, a.name); }
    json operator()(const WaitAction& a) const {
        return {{"seconds", std::isfinite(a.seconds) ? a.seconds : 0.0}};
    }
};

AutomationAction decodeAction(const json& value) {
    if (StrictJson::object(value).size() != 1) throw JsonError("an action needs exactly one kind");
    for (const ActionForm& form : actionForms)
        if (const auto payload = value.find(form.name); payload != value.end()) return form.decode(*payload);
    throw JsonError("an unknown kind of action");
}

Automation decodeAutomation(const json& value) {
    Automation automation;
    automation.id = textMember(value, "id");
    automation.spaceKey = textMember(value, "spaceKey");
    automation.name = textMember(value, "name");
    automation.icon = textMember(value, "icon");
    const auto trigger = automationTriggerOf(textMember(value, "trigger"));
    if (!trigger) throw JsonError("an unknown trigger");
    automation.trigger = *trigger;
    automation.isEnabled = StrictJson::boolean(StrictJson::member(value, "isEnabled"));
    for (const json& action : StrictJson::array(StrictJson::member(value, "actions")))
        automation.actions.push_back(decodeAction(action));
    return automation;
}

json encodeAutomation(const Automation& automation) {
    json actions = json::array();
    for (const AutomationAction& action : automation.actions)
        actions.push_back(
            json::object({{actionForms[action.index()].name, std::visit(PayloadEncoder{}, action)}}));
    return {{"id", automation.id},
            {"spaceKey", automation.spaceKey},
            {"name", automation.name},
            {"icon", automation.icon},
            {"isEnabled", automation.isEnabled},
            {"trigger", textOf(automation.trigger)},
            {"actions", std::move(actions)}};
}

/// A newer program's file is known by its number alone.
void refuseNewer(const json& root) {
    if (!root.is_object()) return;
    const auto version = root.find("schemaVersion");
    if (version == root.end() || !version->is_number_unsigned()) return;
    const auto number = version->get<std::uint64_t>();
    if (number > AutomationFile::currentSchema) throw AutomationStoreError::unsupportedSchema(number);
}

} // namespace

std::string AutomationCodec::encode(const AutomationFile& file) {
    json automations = json::array();
    for (const Automation& automation : file.automations) automations.push_back(encodeAutomation(automation));
    const json root = {{"schemaVersion", file.schemaVersion}, {"automations", std::move(automations)}};
    return root.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

AutomationFile AutomationCodec::decode(std::string_view text) {
    const json root = StrictJson::parse(text);
    refuseNewer(root);
    AutomationFile file;
    file.schemaVersion = StrictJson::integer<int>(StrictJson::member(root, "schemaVersion"));
    for (const json& automation : StrictJson::array(StrictJson::member(root, "automations")))
        file.automations.push_back(decodeAutomation(automation));
    return file;
}

} // namespace lumnara
