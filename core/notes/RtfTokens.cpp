#include "core/notes/RtfTokens.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace lumnara {

namespace {

bool isWordLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDecimalDigit(char c) { return c >= '0' && c <= '9'; }

} // namespace

std::optional<int> hexDigit(char c) {
    if (isDecimalDigit(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return std::nullopt;
}

RtfToken RtfTokens::next() {
    while (at_ < text_.size()) {
        const char c = text_[at_++];
        switch (c) {
        case '{': return RtfToken::of(RtfToken::Kind::open);
        case '}': return RtfToken::of(RtfToken::Kind::close);
        case '\\': return control();
        case '\r':
        case '\n': break;
        default: return RtfToken::of(RtfToken::Kind::text, c);
        }
    }
    return {};
}

RtfToken RtfTokens::control() {
    if (at_ == text_.size()) return {};
    const char c = text_[at_];
    if (isWordLetter(c)) return word();
    ++at_;
    if (c == '\'') return hex();
    if (c == '\r' || c == '\n') return RtfToken::ofWord("par");
    return RtfToken::of(RtfToken::Kind::symbol, c);
}

RtfToken RtfTokens::word() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && isWordLetter(text_[at_])) ++at_;
    RtfToken token = RtfToken::ofWord(text_.substr(begin, at_ - begin));
    token.parameter = number();
    if (at_ < text_.size() && text_[at_] == ' ') ++at_;
    if (token.word == "bin") {
        const auto wanted = static_cast<std::size_t>(std::max(token.parameter.value_or(0), 0));
        token.kind = RtfToken::Kind::binary;
        token.data = text_.substr(at_, wanted);
        at_ += token.data.size();
    }
    return token;
}

RtfToken RtfTokens::hex() {
    const auto digit = [&](std::size_t at) { return at < text_.size() ? hexDigit(text_[at]) : std::nullopt; };
    const auto high = digit(at_);
    const auto low = digit(at_ + 1);
    if (!high || !low) return RtfToken::of(RtfToken::Kind::symbol, '\'');
    at_ += 2;
    return RtfToken::of(RtfToken::Kind::hex, static_cast<char>(*high * 16 + *low));
}

std::optional<int> RtfTokens::number() {
    std::size_t at = at_;
    const bool isNegative = at < text_.size() && text_[at] == '-';
    if (isNegative) ++at;
    if (at == text_.size() || !isDecimalDigit(text_[at])) return std::nullopt;
    constexpr std::int64_t largest = std::numeric_limits<int>::max();
    std::int64_t value = 0;
    for (; at < text_.size() && isDecimalDigit(text_[at]); ++at)
        value = std::min(value * 10 + (text_[at] - '0'), largest);
    at_ = at;
    return static_cast<int>(isNegative ? -value : value);
}

} // namespace lumnara
