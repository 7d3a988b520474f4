#include "core/names/NameRules.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

std::string repeated(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

/// The sentence with which a name or a list of aliases is refused; empty when it passes.
template <class Names> std::string refusal(const Names& names) {
    try {
        NameRules::validate(names);
    } catch (const NameError& error) {
        return error.sentence();
    }
    return {};
}

std::string refusedAlias(const std::string& alias) {
    return refusal(std::vector<std::string>{"Fine", alias});
}

TEST(NameRules, CompareNamesByTheirWords) {
    EXPECT_EQ(NameRules::normalizedKey("Café"), NameRules::normalizedKey("CAFE"));
    EXPECT_EQ(NameRules::normalizedKey(" Work\u3000\n Mail "), "work mail");
    EXPECT_EQ(NameRules::normalizedKey("Ｗork mail"), "work mail");
    EXPECT_NE(NameRules::normalizedKey("Work-Mail"), NameRules::normalizedKey("Work Mail"));
    EXPECT_EQ(NameRules::normalizedKey(" \t"), "");
}

TEST(NameRules, RefuseWhatSpeechWouldMishear) {
    const std::string command = " is a voice command and cannot be used as a name.";
    const std::pair<std::string, std::string> cases[] = {
        {"next", "\"next\"" + command},
        {"Go Left", "\"Go Left\"" + command},
        {"go to last desktop", "\"go to last desktop\"" + command},
        {"Forward!", "\"Forward!\"" + command},
        {"the", "\"the\"" + command},
        {"Please", "\"Please\"" + command},
        {"Desktop", "\"Desktop\"" + command},
        {"SCREEN", "\"SCREEN\"" + command},
        {"Space", "\"Space\"" + command},
        {"open up", "\"open up\"" + command},
        {"!!!", "\"!!!\"" + command},
        {"Seven", "\"Seven\" is heard as desktop 7, so it cannot be used as a name."},
        {"7", "\"7\" is heard as desktop 7, so it cannot be used as a name."},
        {"third", "\"third\" is heard as desktop 3, so it cannot be used as a name."},
        {"2nd", "\"2nd\" is heard as desktop 2, so it cannot be used as a name."},
        {"to", "\"to\" is heard as desktop 2, so it cannot be used as a name."},
        {"Desktop Twenty-Two",
         "\"Desktop Twenty-Two\" is heard as desktop 22, so it cannot be used as a name."},
    };
    for (const auto& [name, sentence] : cases) {
        EXPECT_EQ(refusal(name), sentence);
        EXPECT_EQ(refusedAlias(name), sentence);
    }
    for (const char* name : {"Seven Seas", "Mail", "The Office", "next week", "٣", "日本語", "Spaceship"}) {
        EXPECT_EQ(refusal(std::string(name)), "") << name;
    }
}

TEST(NameRules, MeasureNamesInCharactersOfTheTrimmedText) {
    const std::string family = "👨‍👩‍👧";
    for (const std::string& character : {std::string("x"), std::string("e\u0301"), family}) {
        const std::string longest = "Room" + repeated(character, 36);
        EXPECT_EQ(NameRules::validate("  " + longest + "\n"), longest);
        EXPECT_EQ(refusal(longest + character), "Names can have at most 40 characters.");
        EXPECT_EQ(refusedAlias(longest + character), "Names can have at most 40 characters.");
    }
    EXPECT_EQ(refusal(std::string("   ")), "Give the desktop a name.");
    EXPECT_EQ(NameRules::validate(" Work  MAIL\t"), "Work  MAIL");
}

TEST(NameRules, KeepTheFirstSpellingOfAnAlias) {
    const std::vector<std::string> given = {" Mail", "mail", "", " MAIL ", "Post", "  "};
    EXPECT_EQ(NameRules::validate(given), (std::vector<std::string>{"Mail", "Post"}));

    std::vector<std::string> many;
    for (char letter = 'a'; letter <= 'j'; ++letter) many.push_back(std::string("Room ") + letter);
    many.push_back("ROOM A");
    EXPECT_EQ(NameRules::validate(many).size(), 10u);
    many.push_back("Room k");
    EXPECT_EQ(refusal(many), "At most 10 aliases per desktop.");
}

TEST(NameRules, SplitTheFieldOfAliasesAtCommas) {
    EXPECT_EQ(NameRules::parseAliases("Mail, Post ,, e-mail ,"),
              (std::vector<std::string>{"Mail", "Post", "e-mail"}));
    EXPECT_TRUE(NameRules::parseAliases(" , ").empty());
    EXPECT_TRUE(NameRules::parseAliases("").empty());
}

} // namespace
} // namespace lumnara
