#pragma once

#include <map>
#include <optional>
#include <string>

namespace lumnara {

/// The environment variables that a program decides by: the process's own, read once, or a test's.
class Environment {
public:
    explicit Environment(std::map<std::string, std::string> variables) : variables_(std::move(variables)) {}
    static Environment ofProcess();

    /// The variable's value; nothing when it isn't set or is empty.
    std::optional<std::string> get(const std::string& name) const;

private:
    std::map<std::string, std::string> variables_;
};

} // namespace lumnara
