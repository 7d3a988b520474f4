#include "core/base/StrictJson.h"
#include "core/platform/mac/server/PropertyList.h"

#include <nlohmann/json.hpp>

namespace lumnara {

namespace {

PropertyValue takeValue(nlohmann::json& value) {
    using Type = nlohmann::json::value_t;
    switch (value.type()) {
    case Type::boolean: return value.get<bool>();
    case Type::number_integer: return value.get<std::int64_t>();
    case Type::number_unsigned: return value.get<std::uint64_t>();
    case Type::number_float: return value.get<double>();
    case Type::string: return std::move(value.get_ref<std::string&>());
    case Type::array: {
        PropertyArray array;
        array.reserve(value.size());
        for (nlohmann::json& element : value) array.push_back(takeValue(element));
        return array;
    }
    case Type::object: {
        PropertyDictionary dictionary;
        for (auto& [key, member] : value.items()) dictionary.append(key, takeValue(member));
        return dictionary;
    }
    case Type::null:
    case Type::binary:
    case Type::discarded: break;
    }
    return {};
}

} // namespace

PropertyValue propertyValueFromJson(std::string_view text) {
    nlohmann::json value = StrictJson::parse(text);
    return takeValue(value);
}

} // namespace lumnara
