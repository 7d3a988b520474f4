#pragma once

#include "core/model/SpaceSnapshot.h"

#include <string>
#include <string_view>

namespace lumnara {

/// A value as a JSON text: field names as keys, absent optionals left out, kinds as their numbers, ids and
/// displays as objects of one field, moments as ISO 8601 with milliseconds where there are any. For
/// DisplayID, SpaceID, RunningApp, Space, DisplaySpaces and SpaceSnapshot.
template <class T> std::string toJson(const T& value);

/// The value of a text that toJson wrote. Throws an error of the JSON library, or JsonError for a missing
/// field or one of another type.
template <class T> T fromJson(std::string_view json);

} // namespace lumnara
