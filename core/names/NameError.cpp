#include "core/names/NameError.h"

#include <fmt/format.h>

namespace lumnara {

NameError::NameError(Case which, std::string sentence, std::string name, std::int64_t value)
    : Failure(std::move(sentence)),
      which_(which),
      name_(std::move(name)),
      value_(value) {}

NameError NameError::tooLong(int max) {
    return {Case::tooLong, fmt::format("Names can have at most {} characters.", max), {}, max};
}

NameError NameError::reserved(std::string name) {
    std::string sentence = fmt::format("\"{}\" is a voice command and cannot be used as a name.", name);
    return {Case::reserved, std::move(sentence), std::move(name), 0};
}

NameError NameError::number(std::string name, std::int64_t value) {
    std::string sentence =
        fmt::format("\"{}\" is heard as desktop {}, so it cannot be used as a name.", name, value);
    return {Case::number, std::move(sentence), std::move(name), value};
}

NameError NameError::duplicateOnDisplay(std::string existingName) {
    std::string sentence =
        fmt::format("Another desktop on this display is already called \"{}\".", existingName);
    return {Case::duplicateOnDisplay, std::move(sentence), std::move(existingName), 0};
}

NameError NameError::tooManyAliases(int max) {
    return {Case::tooManyAliases, fmt::format("At most {} aliases per desktop.", max), {}, max};
}

NameError NameError::empty() { return {Case::empty, "Give the desktop a name.", {}, 0}; }

} // namespace lumnara
