#include "core/platform/mac/server/MacSession.h"

#include <variant>

namespace lumnara {

std::optional<bool> MacSession::flag(std::string_view key) {
    const auto dictionary = currentDictionary();
    const PropertyValue* value = dictionary ? dictionary->find(key) : nullptr;
    const bool* flag = value ? std::get_if<bool>(&value->storage()) : nullptr;
    return flag ? std::optional(*flag) : std::nullopt;
}

} // namespace lumnara
