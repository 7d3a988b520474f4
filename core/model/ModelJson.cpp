#include "core/model/ModelJson.h"

#include "core/base/StrictJson.h"

#include <fmt/core.h>
#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

using nlohmann::json;

// The list templates below find these by name.
json encodeModel(const Space& space);
json encodeModel(const DisplaySpaces& display);
void decodeModel(const json& value, Space& space);
void decodeModel(const json& value, DisplaySpaces& display);

json encodeModel(const DisplayID& display) { return {{"uuid", display.uuid}}; }
json encodeModel(SpaceID id) { return {{"raw", id.raw}}; }

json encodeModel(const RunningApp& app) {
    json value = {{"name", app.name}, {"pid", app.pid}};
    if (app.bundleID) value["bundleID"] = *app.bundleID;
    return value;
}

json encodeModel(const Space& space) {
    json value = {{"id", encodeModel(space.id)},
                  {"indexOnDisplay", space.indexOnDisplay},
                  {"kind", static_cast<int>(space.kind)},
                  {"uuid", space.uuid}};
    if (space.managedID) value["managedID"] = *space.managedID;
    if (space.fullscreenOwner) value["fullscreenOwner"] = encodeModel(*space.fullscreenOwner);
    return value;
}

template <class T> json encodeModels(const std::vector<T>& values) {
    json list = json::array();
    for (const T& value : values) list.push_back(encodeModel(value));
    return list;
}

json encodeModel(const DisplaySpaces& display) {
    json value = {{"currentID", encodeModel(display.currentID)},
                  {"display", encodeModel(display.display)},
                  {"spaces", encodeModels(display.spaces)}};
    if (display.name) value["name"] = *display.name;
    return value;
}

json encodeModel(const SpaceSnapshot& snapshot) {
    std::string takenAt = snapshot.takenAt.iso8601();
    const auto fraction = ((snapshot.takenAt.milliseconds % 1000) + 1000) % 1000;
    if (fraction != 0) takenAt.replace(takenAt.size() - 1, 1, fmt::format(".{:03}Z", fraction));
    json value = {{"displays", encodeModels(snapshot.displays)}, {"takenAt", takenAt}};
    if (snapshot.focusedDisplay) value["focusedDisplay"] = encodeModel(*snapshot.focusedDisplay);
    return value;
}

void decodeModel(const json& value, DisplayID& display) {
    display.uuid = StrictJson::text(StrictJson::member(value, "uuid"));
}

void decodeModel(const json& value, SpaceID& id) {
    id.raw = StrictJson::unsignedInteger(StrictJson::member(value, "raw"));
}

void decodeModel(const json& value, RunningApp& app) {
    app.pid = StrictJson::integer<std::int32_t>(StrictJson::member(value, "pid"));
    app.name = StrictJson::text(StrictJson::member(value, "name"));
    if (const json* bundleID = StrictJson::find(value, "bundleID"))
        app.bundleID = StrictJson::text(*bundleID);
}

void decodeModel(const json& value, Space& space) {
    decodeModel(StrictJson::member(value, "id"), space.id);
    space.uuid = StrictJson::text(StrictJson::member(value, "uuid"));
    space.kind = spaceKindOf(StrictJson::integer(StrictJson::member(value, "kind")));
    space.indexOnDisplay = StrictJson::integer<int>(StrictJson::member(value, "indexOnDisplay"));
    if (const json* managedID = StrictJson::find(value, "managedID"))
        space.managedID = StrictJson::integer(*managedID);
    if (const json* owner = StrictJson::find(value, "fullscreenOwner"))
        decodeModel(*owner, space.fullscreenOwner.emplace());
}

template <class T> void decodeModel(const json& value, std::vector<T>& values) {
    for (const json& element : StrictJson::array(value)) decodeModel(element, values.emplace_back());
}

void decodeModel(const json& value, DisplaySpaces& display) {
    decodeModel(StrictJson::member(value, "display"), display.display);
    decodeModel(StrictJson::member(value, "spaces"), display.spaces);
    decodeModel(StrictJson::member(value, "currentID"), display.currentID);
    if (const json* name = StrictJson::find(value, "name")) display.name = StrictJson::text(*name);
}

void decodeModel(const json& value, SpaceSnapshot& snapshot) {
    decodeModel(StrictJson::member(value, "displays"), snapshot.displays);
    const auto takenAt = Date::fromISO8601(StrictJson::text(StrictJson::member(value, "takenAt")));
    if (!takenAt) throw JsonError("\"takenAt\" is no ISO 8601 date");
    snapshot.takenAt = *takenAt;
    if (const json* focused = StrictJson::find(value, "focusedDisplay"))
        decodeModel(*focused, snapshot.focusedDisplay.emplace());
}

} // namespace

template <class T> std::string toJson(const T& value) { return encodeModel(value).dump(); }

template <class T> T fromJson(std::string_view text) {
    T value;
    decodeModel(StrictJson::parse(text), value);
    return value;
}

template std::string toJson(const DisplayID&);
template std::string toJson(const SpaceID&);
template std::string toJson(const RunningApp&);
template std::string toJson(const Space&);
template std::string toJson(const DisplaySpaces&);
template std::string toJson(const SpaceSnapshot&);
template DisplayID fromJson(std::string_view);
template SpaceID fromJson(std::string_view);
template RunningApp fromJson(std::string_view);
template Space fromJson(std::string_view);
template DisplaySpaces fromJson(std::string_view);
template SpaceSnapshot fromJson(std::string_view);

} // namespace lumnara
