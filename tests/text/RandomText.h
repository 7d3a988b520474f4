#pragma once

#include <random>
#include <string>
#include <vector>

namespace lumnara::testing {

/// Texts of the kinds that go wrong: marks that compose and trade places, joined emoji, Hangul in parts,
/// full width, right to left, Indic vowels, controls, malformed bytes.
class RandomText {
public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random_); }
    bool chance(unsigned percent) { return below(100) < percent; }

    /// Up to `pieces` pieces. A text draws its odd ones from a few, so that they meet.
    std::string text(unsigned pieces) {
        const std::vector<std::string> few = {odd(), odd(), odd(), odd()};
        const unsigned plain = below(100);
        std::string out;
        for (unsigned left = below(pieces + 1); left > 0; --left) {
            out += chance(plain) ? std::string(1, "abcdeABCDE 12"[below(13)]) : few[below(4)];
        }
        return out;
    }

private:
    std::string odd() {
        static const std::vector<std::string> pieces = {
            "é",
            "e\u0301",
            "\u0301",
            "\u0323",
            "\u0345",
            "Å",
            "ß",
            "İ",
            "ı",
            "Σ",
            "ς",
            "ŉ",
            "ﬁ",
            "Ａ",
            "１",
            "\u3000",
            "ｶﾞ",
            "\u3099",
            "カ",
            "한",
            "ᄒ",
            "ᅡ",
            "ᆫ",
            "क",
            "ि",
            "्",
            "ष",
            "ா",
            "ெ",
            "\u0DCF",
            "ൎ",
            "\u0600",
            "א",
            "\u05B8",
            "ש\u05C1",
            "ع",
            "\u064B",
            "ไ",
            "ำ",
            "\u0E33",
            "👩",
            "👧",
            "\u200D",
            "🇩",
            "🇪",
            "\uFE0F",
            "\u20E3",
            "🏽",
            "٣",
            "½",
            "Ⅳ",
            "一",
            "文",
            "\u00A0",
            "\u2028",
            "\u0085",
            "\r",
            "\n",
            "\t",
            "—",
            "'",
            "-",
            "\uFFFD",
            "\x80",
            "\xC3",
            "\xE2\x82",
            "\xED\xA0\x80",
            "Ꭰ",
            "ꭰ",
            "\u0340",
            "\u1E9B\u0323",
            "𝒜",
            "𐐀",
            "\u0F71\u0F72",
            "ǅ",
            "Ω",
            "K",
            "\u200B",
            "\u0338",
        };
        return pieces[below(static_cast<unsigned>(pieces.size()))];
    }

    std::mt19937 random_;
};

} // namespace lumnara::testing
