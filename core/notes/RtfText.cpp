#include "core/notes/RtfText.h"

#include "core/text/Utf8.h"

#include <utility>

namespace lumnara {

namespace {

constexpr std::size_t mostDecoders = 16;

bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }
bool isLowSurrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

} // namespace

void RtfText::addByte(char byte, int codePage) {
    finishSurrogate();
    if (codePage != codePage_) finishBytes();
    codePage_ = codePage;
    bytes_ += byte;
}

void RtfText::addUnit(char16_t unit) {
    finishBytes();
    if (isLowSurrogate(unit) && highSurrogate_ != 0) {
        const char32_t high = std::exchange(highSurrogate_, char16_t{0});
        text::appendUtf8(text_, 0x10000 + ((high & 0x3FF) << 10) + (unit & 0x3FFu));
        return;
    }
    finishSurrogate();
    if (isHighSurrogate(unit)) {
        highSurrogate_ = unit;
    } else {
        text::appendUtf8(text_, isLowSurrogate(unit) ? text::replacementCharacter : char32_t{unit});
    }
}

void RtfText::addCharacter(char32_t codePoint) {
    finishBytes();
    finishSurrogate();
    text::appendUtf8(text_, codePoint);
}

std::string RtfText::take() {
    finishBytes();
    finishSurrogate();
    return std::exchange(text_, {});
}

void RtfText::finishBytes() {
    if (bytes_.empty()) return;
    text_ += text::isAscii(bytes_) ? bytes_ : decoder(codePage_).decode(bytes_);
    bytes_.clear();
}

void RtfText::finishSurrogate() {
    if (std::exchange(highSurrogate_, char16_t{0}) != 0) text::appendUtf8(text_, text::replacementCharacter);
}

text::CodePage& RtfText::decoder(int codePage) {
    if (const auto found = decoders_.find(codePage); found != decoders_.end()) return found->second;
    if (decoders_.size() == mostDecoders) decoders_.clear();
    return decoders_.try_emplace(codePage, codePage).first->second;
}

} // namespace lumnara
