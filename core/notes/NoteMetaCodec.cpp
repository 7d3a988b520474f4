#include "core/notes/NoteMetaCodec.h"

#include "core/base/StrictJson.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

using nlohmann::json;

double decodeNumber(const json& value) {
    if (!value.is_number()) throw JsonError(std::string("expected a number, found ") + value.type_name());
    return value.get<double>();
}

std::array<double, 2> decodePair(const json& value) {
    if (StrictJson::array(value).size() != 2) throw JsonError("expected a pair of numbers");
    return {decodeNumber(value[0]), decodeNumber(value[1])};
}

Rect decodeFrame(const json& value) {
    if (StrictJson::array(value).size() != 2) throw JsonError("expected an origin and a size");
    const auto origin = decodePair(value[0]);
    const auto size = decodePair(value[1]);
    return {origin[0], origin[1], size[0], size[1]};
}

NoteEdge decodeEdge(const json& value) {
    const std::string& name = StrictJson::text(value);
    if (name == "left") return NoteEdge::left;
    if (name == "right") return NoteEdge::right;
    throw JsonError("an edge is \"left\" or \"right\"");
}

Date decodeMoment(const json& value) {
    const auto date = Date::fromISO8601(StrictJson::text(value));
    if (!date) throw JsonError("no ISO 8601 date");
    return *date;
}

bool isExpressible(const Rect& frame) {
    const std::array numbers = {frame.x, frame.y, frame.width, frame.height};
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

} // namespace

std::string NoteMetaCodec::encode(const NoteMeta& meta) {
    json root = {{"edge", meta.edge == NoteEdge::left ? "left" : "right"},
                 {"isDocked", meta.isDocked},
                 {"isVisible", meta.isVisible},
                 {"updatedAt", meta.updatedAt.iso8601()}};
    if (std::isfinite(meta.edgeOffset)) root["edgeOffset"] = meta.edgeOffset;
    if (meta.frame && isExpressible(*meta.frame))
        root["frame"] = {{meta.frame->x, meta.frame->y}, {meta.frame->width, meta.frame->height}};
    return root.dump(2) + "\n";
}

NoteMeta NoteMetaCodec::decode(std::string_view text, Date now) {
    const json root = StrictJson::parse(text);
    NoteMeta meta;
    if (const json* frame = StrictJson::find(root, "frame")) meta.frame = decodeFrame(*frame);
    if (const json* docked = StrictJson::find(root, "isDocked")) meta.isDocked = StrictJson::boolean(*docked);
    if (const json* edge = StrictJson::find(root, "edge")) meta.edge = decodeEdge(*edge);
    if (const json* offset = StrictJson::find(root, "edgeOffset")) meta.edgeOffset = decodeNumber(*offset);
    if (const json* visible = StrictJson::find(root, "isVisible"))
        meta.isVisible = StrictJson::boolean(*visible);
    const json* updated = StrictJson::find(root, "updatedAt");
    meta.updatedAt = updated ? decodeMoment(*updated) : now;
    return meta;
}

} // namespace lumnara
