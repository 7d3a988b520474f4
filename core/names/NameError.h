#pragma once

#include "core/base/Failure.h"

#include <cstdint>
#include <string>

namespace lumnara {

/// Why a text can't be the name or an alias of a desktop.
class NameError : public FailureOf<NameError, std::string, std::int64_t> {
public:
    enum class Case { tooLong, reserved, number, duplicateOnDisplay, tooManyAliases, empty };
    static constexpr Sentence<Case> sentences[] = {
        {Case::tooLong, "Names can have at most {1} characters."},
        {Case::reserved, "\"{0}\" is a voice command and cannot be used as a name."},
        {Case::number, "\"{0}\" is heard as desktop {1}, so it cannot be used as a name."},
        {Case::duplicateOnDisplay, "Another desktop on this display is already called \"{0}\"."},
        {Case::tooManyAliases, "At most {1} aliases per desktop."},
        {Case::empty, "Give the desktop a name."},
    };

    static NameError tooLong(int max) { return NameError(Case::tooLong, {}, max); }
    static NameError reserved(std::string name) { return NameError(Case::reserved, std::move(name), 0); }
    static NameError number(std::string name, std::int64_t value) {
        return NameError(Case::number, std::move(name), value);
    }
    static NameError duplicateOnDisplay(std::string existingName) {
        return NameError(Case::duplicateOnDisplay, std::move(existingName), 0);
    }
    static NameError tooManyAliases(int max) { return NameError(Case::tooManyAliases, {}, max); }
    static NameError empty() { return NameError(Case::empty); }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
