#pragma once

#include "core/automation/Automation.h"

#include <string>
#include <string_view>

namespace lumnara {

/// automations.json as text: UTF-8 JSON with sorted keys, absent optionals left out. An action is an object
/// of exactly one key, its kind, whose value holds its payload: {"wait": {"seconds": 2}}.
class AutomationCodec {
public:
    /// Bytes that are no UTF-8 become U+FFFD, and a wait that is no finite number 0: one bad value must not
    /// cost the whole file at the next start.
    static std::string encode(const AutomationFile& file);

    /// Throws AutomationStoreError::unsupportedSchema for schema 2 and newer whatever the rest is like, and
    /// any other exception for damage: bad JSON, a missing member, a value of another type, an unknown
    /// trigger, action or session operation. Members that it doesn't know are passed over.
    static AutomationFile decode(std::string_view text);
};

} // namespace lumnara
