#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace lumnara {

/// One piece of the Rich Text Format.
struct RtfToken {
    enum class Kind {
        end,
        open,   ///< {
        close,  ///< }
        word,   ///< \word or \word12; a backslash before a line end is the word "par"
        symbol, ///< \ before another character: `byte`
        text,   ///< a byte of text as it stands
        hex,    ///< \'hh
        binary, ///< what follows \bin: `data`
    };

    Kind kind = Kind::end;
    std::string_view word;
    std::optional<int> parameter;
    char byte = 0;
    std::string_view data;

    static RtfToken of(Kind kind, char byte = 0) {
        RtfToken token;
        token.kind = kind;
        token.byte = byte;
        return token;
    }
    static RtfToken ofWord(std::string_view word) {
        RtfToken token = of(Kind::word);
        token.word = word;
        return token;
    }
};

/// Cuts a text into tokens, which point into it. Anything is accepted.
class RtfTokens {
public:
    explicit RtfTokens(std::string_view text) : text_(text) {}
    RtfToken next();

private:
    RtfToken control();
    RtfToken word();
    RtfToken hex();
    std::optional<int> number();

    std::string_view text_;
    std::size_t at_ = 0;
};

/// The value of a hexadecimal digit, or nothing.
std::optional<int> hexDigit(char c);

} // namespace lumnara
