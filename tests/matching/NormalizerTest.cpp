#include "core/matching/Normalizer.h"
#include "tests/matching/PlainMatcher.h"
#include "tests/text/RandomText.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using testing::RandomText;
namespace plain = testing::plain;

TEST(Normalizer, TurnsSpokenNumbersIntoDigits) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},
        {"!!!", ""},
        {"Desktop Twenty-Two", "desktop 22"},
        {"twenty", "20"},
        {"twenty second", "22"},
        {"twenty 2", "22"},
        {"twenty 02", "22"},
        {"twenty 0", "20 0"},
        {"twenty zero", "20 0"},
        {"twenty to", "20 to"},
        {"twenty ten", "20 10"},
        {"forty 2nd", "42"},
        {"forty 12th", "40 12th"},
        {"forty twelfth", "40 12"},
        {"ninety 99999999999999999999", "90 99999999999999999999"},
        {"zero", "0"},
        {"one hundred", "1 hundred"},
        {"for", "4"},
        {"for work", "for work"},
        {"go to two", "go to 2"},
        {"TOO", "2"},
        {"Won", "1"},
        {"ate", "8"},
        {"it's café ｔｈｒｅｅ", "it s cafe 3"},
        {"٣", "٣"},
    };
    for (const auto& [text, canonical] : cases) EXPECT_EQ(Normalizer::canonical(text), canonical) << text;
}

TEST(Normalizer, StripsTheWordsAroundTheTarget) {
    const std::pair<const char*, const char*> cases[] = {
        {"please go to the design desktop", "design"},
        {"take me to desktop 3", "3"},
        {"switch over to mail", "mail"},
        {"open up", ""},
        {"open up design", "design"},
        {"opening", "opening"},
        {"desktop", ""},
        {"screen space", ""},
        {"go to the please work", "work"},
        {"work screen space desktop", "work"},
        {"work desktop space screen", "work desktop space"},
        {"work desktop desktop", "work desktop"},
        {"go to", ""},
        {"", ""},
    };
    for (const auto& [text, stripped] : cases) EXPECT_EQ(Normalizer::stripFiller(text), stripped) << text;
}

TEST(Normalizer, ReadsNothingButNumbers) {
    EXPECT_EQ(Normalizer::parseNumber("12"), 12);
    EXPECT_EQ(Normalizer::parseNumber(" 007\n"), 7);
    EXPECT_EQ(Normalizer::parseNumber("9223372036854775807"), INT64_MAX);
    for (const char* text :
         {"", " ", "٣", "½", "3 4", "-3", "+3", "3a", "9223372036854775808", "99999999999999999999"}) {
        EXPECT_EQ(Normalizer::parseNumber(text), std::nullopt) << text;
    }
}

TEST(Normalizer, AgreesWithThePlainReading) {
    RandomText random(3);
    const char* const words[] = {"twenty", "Thirty", "to",      "for",   "two",    "second", "2",
                                 "12th",   "ten",    "desktop", "space", "please", "open",   "up",
                                 "go",     "the",    "show",    "me",    "-",      "\u0301"};
    for (int i = 0; i < 5000; ++i) {
        std::string text;
        for (unsigned left = random.below(7); left > 0; --left) {
            text += random.chance(70) ? words[random.below(std::size(words))] : random.text(3);
            if (random.chance(80)) text += " ";
        }
        const std::string canonical = Normalizer::canonical(text);
        ASSERT_EQ(canonical, plain::canonical(text)) << text;
        const std::string stripped = Normalizer::stripFiller(canonical);
        ASSERT_EQ(stripped, plain::stripFiller(canonical)) << canonical;
        const auto number = plain::parseNumber(stripped);
        ASSERT_EQ(Normalizer::parseNumber(stripped),
                  number ? std::optional<std::int64_t>(*number) : std::nullopt);
    }
}

} // namespace
} // namespace lumnara
