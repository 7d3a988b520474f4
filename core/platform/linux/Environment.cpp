#include "core/platform/linux/Environment.h"

#include <unistd.h>

namespace lumnara {

Environment Environment::ofProcess() {
    std::map<std::string, std::string> variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string text = *entry;
        const auto equals = text.find('=');
        if (equals != std::string::npos) variables.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    return Environment(std::move(variables));
}

std::optional<std::string> Environment::get(const std::string& name) const {
    const auto found = variables_.find(name);
    if (found == variables_.end() || found->second.empty()) return std::nullopt;
    return found->second;
}

} // namespace lumnara
