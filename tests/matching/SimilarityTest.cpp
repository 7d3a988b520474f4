#include "core/matching/Similarity.h"
#include "tests/matching/PlainMatcher.h"
#include "tests/text/RandomText.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using testing::RandomText;
namespace plain = testing::plain;

TEST(Similarity, CountsEdits) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"", "", 0},
        {"", "abc", 3},
        {"abc", "", 3},
        {"ab", "ba", 1},
        {"ca", "abc", 3},
        {"mail", "mial", 1},
        {"kitten", "sitting", 3},
        {"👨‍👩‍👧a", "👨‍👩‍👧b", 1},
        {"é", "e\u0301", 0},
    };
    for (const auto& [a, b, edits] : cases) {
        EXPECT_EQ(Similarity::distance(a, b), edits) << a << " " << b;
        EXPECT_EQ(Similarity::distance(b, a), edits) << b << " " << a;
    }
    EXPECT_EQ(Similarity::distanceRatio("", ""), 1.0);
    EXPECT_EQ(Similarity::distanceRatio("ab", "ba"), 0.5);
    EXPECT_EQ(Similarity::distanceRatio("", "ab"), 0.0);
}

TEST(Similarity, RaisesJaroForACommonBeginning) {
    EXPECT_EQ(Similarity::jaroWinkler("design", "design"), 1.0);
    EXPECT_EQ(Similarity::jaroWinkler("", ""), 1.0);
    EXPECT_EQ(Similarity::jaroWinkler("", "a"), 0.0);
    EXPECT_EQ(Similarity::jaroWinkler("a", ""), 0.0);
    EXPECT_EQ(Similarity::jaroWinkler("abc", "xyz"), 0.0);
    EXPECT_NEAR(Similarity::jaroWinkler("martha", "marhta"), 0.9611, 0.0001);
    EXPECT_NEAR(Similarity::jaroWinkler("dixon", "dicksonx"), 0.8133, 0.0001);
    // The boost has no lower limit: 1/5 + 1/9 + 1 over 3 is far below any.
    EXPECT_NEAR(Similarity::jaroWinkler("axxxx", "ayyyyyyyy"), 0.4370 + 0.1 * (1 - 0.4370), 0.0001);
}

TEST(Similarity, ComparesWordsAsSets) {
    EXPECT_EQ(Similarity::tokenOverlap("a a b", "b a"), 1.0);
    EXPECT_EQ(Similarity::tokenOverlap("  a ", "a b c"), 1.0 / 3.0);
    EXPECT_EQ(Similarity::tokenOverlap("", " "), 0.0);
    EXPECT_EQ(Similarity::tokenOverlap("", "a"), 0.0);
}

TEST(Similarity, AgreesWithThePlainReading) {
    RandomText random(5);
    for (int i = 0; i < 4000; ++i) {
        const std::string a = plain::normalize(random.text(12));
        std::string b = random.chance(50) ? plain::normalize(random.text(12)) : a;
        if (random.chance(50) && !b.empty()) b.erase(0, plain::characters(b).front().size());
        const plain::Text x = plain::characters(a), y = plain::characters(b);
        ASSERT_EQ(Similarity::distance(a, b), plain::distance(x, y)) << a << "|" << b;
        ASSERT_EQ(Similarity::distanceRatio(a, b), plain::distanceRatio(x, y)) << a << "|" << b;
        ASSERT_EQ(Similarity::jaroWinkler(a, b), plain::jaroWinkler(x, y)) << a << "|" << b;
        ASSERT_EQ(Similarity::tokenOverlap(a, b), plain::tokenOverlap(x, y)) << a << "|" << b;
    }
}

} // namespace
} // namespace lumnara
