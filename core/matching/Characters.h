#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumnara {

/// A text as numbers, one for each user-perceived character.
using Characters = std::vector<std::uint32_t>;

/// Gives characters numbers: the same number to the same character, so that comparing costs nothing. A
/// character of one code point is that code point. Texts have to be in normalisation form C.
class CharacterNumbers {
public:
    static constexpr std::uint32_t unknown = 0xFFFFFFFF;

    /// The characters of a text, learning those of several code points that are new. `out` is overwritten.
    void number(std::string_view text, Characters& out);
    /// The characters of a text; those of several code points that are new are `unknown`.
    void find(std::string_view text, Characters& out) const;

private:
    std::unordered_map<std::string, std::uint32_t> clusters_;
};

} // namespace lumnara
