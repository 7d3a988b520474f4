#include "core/base/StrictJson.h"

#include <nlohmann/json.hpp>
#include <set>
#include <vector>

namespace lumnara {

namespace {

using nlohmann::json;

constexpr int deepestNesting = 64;

const json& require(bool isExpected, const json& value, const char* expected) {
    if (!isExpected) throw JsonError(std::string("expected ") + expected + ", found " + value.type_name());
    return value;
}

} // namespace

json StrictJson::parse(std::string_view text) {
    return parse(text,
                 [](const std::string& key) { throw JsonError("the key \"" + key + "\" stands twice"); });
}

json StrictJson::parse(std::string_view text, const std::function<void(const std::string&)>& onDoubledKey) {
    std::vector<std::set<std::string>> openObjects;
    const auto check = [&](int depth, json::parse_event_t event, json& parsed) {
        if (depth > deepestNesting) throw JsonError("the values nest too deeply");
        if (event == json::parse_event_t::object_start) openObjects.emplace_back();
        if (event == json::parse_event_t::object_end) openObjects.pop_back();
        if (event == json::parse_event_t::key) {
            const auto& key = parsed.get_ref<const std::string&>();
            if (!openObjects.back().insert(key).second) onDoubledKey(key);
        }
        return true;
    };
    return json::parse(text, check);
}

const json* StrictJson::find(const json& value, const char* name) {
    const auto found = object(value).find(name);
    return found == value.end() || found->is_null() ? nullptr : &*found;
}

const json& StrictJson::member(const json& value, const char* name) {
    const json* found = find(value, name);
    if (!found) throw JsonError(std::string("\"") + name + "\" is missing");
    return *found;
}

const json& StrictJson::object(const json& value) { return require(value.is_object(), value, "an object"); }
const json& StrictJson::array(const json& value) { return require(value.is_array(), value, "a list"); }

const std::string& StrictJson::text(const json& value) {
    return require(value.is_string(), value, "a text").get_ref<const std::string&>();
}

bool StrictJson::boolean(const json& value) {
    return require(value.is_boolean(), value, "true or false").get<bool>();
}

std::uint64_t StrictJson::unsignedInteger(const json& value) {
    const bool isOne =
        value.is_number_unsigned() || (value.is_number_integer() && value.get<std::int64_t>() >= 0);
    return require(isOne, value, "a whole number of at least 0").get<std::uint64_t>();
}

double StrictJson::number(const json& value) {
    return require(value.is_number(), value, "a number").get<double>();
}

std::int64_t StrictJson::signedInteger(const json& value) {
    require(value.is_number_integer(), value, "a whole number");
    if (value.is_number_unsigned() && !std::in_range<std::int64_t>(value.get<std::uint64_t>()))
        throw JsonError("a number is out of range");
    return value.get<std::int64_t>();
}

} // namespace lumnara
