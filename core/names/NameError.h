#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// Why a text can't be the name or an alias of a desktop.
class NameError : public Failure {
public:
    enum class Case { tooLong, reserved, number, duplicateOnDisplay, tooManyAliases, empty };

    static NameError tooLong(int max);
    static NameError reserved(std::string name);
    static NameError number(std::string name, std::int64_t value);
    static NameError duplicateOnDisplay(std::string existingName);
    static NameError tooManyAliases(int max);
    static NameError empty();

    Case which() const { return which_; }
    /// The name as typed, or the existing name of `duplicateOnDisplay`.
    const std::string& name() const { return name_; }
    /// The maximum, or the number that the name is heard as.
    std::int64_t value() const { return value_; }
    bool operator==(const NameError& other) const {
        return which_ == other.which_ && name_ == other.name_ && value_ == other.value_;
    }

private:
    NameError(Case which, std::string sentence, std::string name, std::int64_t value);

    Case which_;
    std::string name_;
    std::int64_t value_;
};

} // namespace lumnara
