#pragma once

#include "core/text/CodePage.h"

#include <cstdint>
#include <map>
#include <string>

namespace lumnara {

/// Gathers text that comes as bytes of changing code pages and as UTF-16 units, and gives it as UTF-8.
class RtfText {
public:
    void addByte(char byte, int codePage);
    void addUnit(char16_t unit);
    void addCharacter(char32_t codePoint);

    bool empty() const { return text_.empty() && bytes_.empty() && highSurrogate_ == 0; }
    /// What was gathered since the last time. Half characters at the end become U+FFFD.
    std::string take();

private:
    void finishBytes();
    void finishSurrogate();
    text::CodePage& decoder(int codePage);

    std::string text_;
    std::string bytes_;
    int codePage_ = text::CodePage::westernEuropean;
    char16_t highSurrogate_ = 0;
    std::map<int, text::CodePage> decoders_;
};

} // namespace lumnara
