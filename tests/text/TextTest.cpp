#include "core/text/Text.h"
#include "core/text/CodePoints.h"
#include "tests/text/PlainText.h"
#include "tests/text/RandomText.h"

#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <unicode/uversion.h>

namespace lumnara::text {
namespace {

using testing::RandomText;

std::vector<std::string> clusters(std::string_view text) {
    std::vector<std::string> out;
    for (const std::string_view cluster : Clusters(text)) out.emplace_back(cluster);
    return out;
}

std::string sample(unsigned seed) { return RandomText(seed).text(14); }

std::string unicodeVersion() {
    UVersionInfo version;
    u_getUnicodeVersion(version);
    return std::to_string(version[0]) + "." + std::to_string(version[1]) + ".";
}

TEST(Clusters, FollowUnicodesOwnTest) {
    std::ifstream file("/usr/share/unicode/auxiliary/GraphemeBreakTest.txt");
    std::string line;
    if (!std::getline(file, line)) GTEST_SKIP() << "the package unicode-data is not installed";
    if (line.find("-" + unicodeVersion()) == std::string::npos) {
        GTEST_SKIP() << line << " is not of ICU's version " << unicodeVersion();
    }
    int tested = 0;
    for (; std::getline(file, line); ++tested) {
        std::istringstream parts(line.substr(0, line.find('#')));
        std::vector<std::string> expected;
        std::string part, all;
        bool starts = false;
        while (parts >> part) {
            if (part == "÷" || part == "×") {
                starts = part == "÷";
                continue;
            }
            if (starts) expected.emplace_back();
            appendUtf8(expected.back(), static_cast<char32_t>(std::stoul(part, nullptr, 16)));
        }
        for (const std::string& cluster : expected) all += cluster;
        EXPECT_EQ(clusters(all), expected) << line;
    }
    EXPECT_GT(tested, 500);
}

TEST(Clusters, AreThoseOfIcuInAnyText) {
    for (unsigned seed = 0; seed < 20000; ++seed) {
        const std::string text = sanitizedUtf8(sample(seed));
        ASSERT_EQ(clusters(text), testing::plain::characters(text)) << seed;
    }
}

TEST(Clusters, AreCountedAndCutWhole) {
    const std::string family = "👨‍👩‍👧";
    const std::string text = "ae\u0301" + family + "\r\nz";
    EXPECT_EQ(length(text), 5u);
    EXPECT_EQ(length(""), 0u);
    EXPECT_EQ(length("\xFF\xFE"), 2u);
    EXPECT_EQ(length("हिन्दी"), 2u); // a conjunct is one character
    EXPECT_EQ(first(text, 2), "ae\u0301");
    EXPECT_EQ(first(text, 0), "");
    EXPECT_EQ(first(text, 9), text);
    EXPECT_EQ(last(text, 2), "\r\nz");
    EXPECT_EQ(last(text, 9), text);
    EXPECT_EQ(withoutLast(text), "ae\u0301" + family + "\r\n");
    EXPECT_EQ(withoutLast("a" + family), "a");
    EXPECT_EQ(withoutLast(""), "");
    EXPECT_TRUE(beginsWith("eagle", "e"));
    EXPECT_FALSE(beginsWith("e\u0301a", "e"));
    EXPECT_TRUE(endsWith("go one", " one"));
    EXPECT_FALSE(endsWith("go one\u0301", " one"));
}

TEST(Utf8, BadBytesBecomeReplacementsOneByOne) {
    const std::string bad[] = {"\x80", "\xC0\xAF", "\xE2\x82", "\xED\xA0\x80", "\xF4\x90\x80\x80", "a\xFFz"};
    for (const std::string& text : bad) {
        EXPECT_FALSE(isValidUtf8(text));
        EXPECT_TRUE(isValidUtf8(sanitizedUtf8(text)));
        EXPECT_EQ(sanitizedUtf8(text), testing::plain::encoded(testing::plain::decoded(text)));
    }
    EXPECT_EQ(sanitizedUtf8("\xE2\x82x"), "\uFFFD\uFFFDx");
    for (const std::string text : {"", "aé€😀", "\uFFFD"}) {
        EXPECT_TRUE(isValidUtf8(text));
        EXPECT_EQ(sanitizedUtf8(text), text);
    }
}

TEST(Folding, ForgetsCaseMarksAndWidth) {
    const std::pair<std::string, std::string> cases[] = {
        {"Café", "cafe"},
        {"CAFE", "cafe"},
        {"Straße", "strasse"},
        {"İstanbul", "istanbul"},
        {"ı", "ı"},
        {"ＡＢＣ１", "abc1"},
        {"Ångström", "angstrom"},
        {"ΟΔΟΣ", "οδοσ"},
        {"\u1112\u1161\u11AB", "한"},
        {"ｶﾞ", "ガ"},
        {"\u0301", ""},
        {"٣", "٣"},
        {"क्षि", "क्षि"},
        {"שָׁלוֹם", "שלום"},
        {"ﬁ", "fi"},
        {"a — b", "a — b"},
    };
    for (const auto& [text, folded] : cases) EXPECT_EQ(fold(text), folded) << text;
}

TEST(Folding, SeparatesWordsByOneBlank) {
    const std::pair<std::string, std::string> cases[] = {
        {"  Work—Mail!! ", "work mail"},         {"it's", "it s"}, {"!!!", ""},         {"", ""},
        {"👨‍👩‍👧 family", "family"}, {"½ Ⅳ", "½ ⅳ"},   {"a\u200Bb", "a b"},
    };
    for (const auto& [text, normalized] : cases) EXPECT_EQ(normalize(text), normalized) << text;
}

TEST(Folding, IsThatOfIcuForEachCodePoint) {
    for (char32_t c = 1; c < 0x110000; c += c < 0x3400 ? 1 : 29) {
        if (c >= 0xD800 && c < 0xE000) continue;
        std::string text = "a";
        appendUtf8(text, c);
        text += "b";
        ASSERT_EQ(fold(text), testing::plain::fold(text)) << std::hex << static_cast<unsigned>(c);
        ASSERT_EQ(normalize(text), testing::plain::normalize(text)) << std::hex << static_cast<unsigned>(c);
    }
}

TEST(Folding, IsThatOfIcuInAnyText) {
    for (unsigned seed = 0; seed < 20000; ++seed) {
        const std::string text = sample(seed);
        ASSERT_EQ(fold(text), testing::plain::fold(text)) << seed;
        ASSERT_EQ(normalize(text), testing::plain::normalize(text)) << seed;
        ASSERT_EQ(trim(sanitizedUtf8(text)), testing::plain::trimmed(text)) << seed;
        ASSERT_EQ(fold(fold(text)), fold(text)) << seed;
    }
}

TEST(Text, TrimsAndSplitsAtEveryKindOfWhitespace) {
    EXPECT_EQ(trim("\u3000\r\n a b\u0085\u2028\t"), "a b");
    EXPECT_EQ(trim(" \n"), "");
    EXPECT_EQ(trim(""), "");
    const std::vector<std::string_view> expected = {"a", "b", "c"};
    EXPECT_EQ(splitAtWhitespace(" a\u00A0 b\nc"), expected);
    EXPECT_TRUE(splitAtWhitespace(" \t").empty());
}

TEST(Text, TellsLettersFromNumbersByTheirFirstCodePoint) {
    for (const char* letter : {"a", "é", "e\u0301", "한", "文", "ш"}) EXPECT_TRUE(isLetter(letter)) << letter;
    for (const char* number : {"7", "٣", "½", "Ⅳ", "７"}) EXPECT_TRUE(isNumber(number)) << number;
    for (const char* neither : {"", " ", "-", "👩", "\u0301", "\xFF"}) {
        EXPECT_FALSE(isLetter(neither) || isNumber(neither)) << neither;
    }
}

TEST(Text, ChangesCase) {
    EXPECT_EQ(lowercased("ÀΣ İ"), "àς i\u0307");
    EXPECT_EQ(uppercased("straße é"), "STRASSE É");
    EXPECT_TRUE(equalsIgnoringCase("A1B2-fe", "a1b2-FE"));
    EXPECT_FALSE(equalsIgnoringCase("É", "é"));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
}

TEST(Text, ListsAsReadersExpect) {
    EXPECT_TRUE(std::is_eq(compareLocalized("Mail", "mail")));
    EXPECT_TRUE(std::is_lt(compareLocalized("apple", "Banana")));
    EXPECT_TRUE(std::is_lt(compareLocalized("Éa", "eb")));
    EXPECT_TRUE(std::is_lt(compareLocalized("resume", "résumé")));
    EXPECT_TRUE(std::is_gt(compareLocalized("b", "")));
}

// A page of the table fills once, whoever asks first.
TEST(CodePoints, MayBeMetByManyThreads) {
    std::vector<std::string> folded(4);
    std::vector<std::thread> threads;
    for (std::string& out : folded) {
        threads.emplace_back([&out] {
            for (char32_t c = 0x3400; c < 0xA000; c += 64) {
                std::string text;
                appendUtf8(text, c);
                out += normalize(text);
            }
            compareLocalized(out, "a");
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& out : folded) EXPECT_EQ(out, folded.front());
}

} // namespace
} // namespace lumnara::text
