#include "core/notes/Checklist.h"

#include <gtest/gtest.h>

namespace lumnara {

namespace Checklist {
void PrintTo(const Edit& edit, std::ostream* out) {
    *out << edit.location << "+" << edit.length << " \"" << edit.replacement << "\"";
}
} // namespace Checklist

namespace {

using Checklist::Edit;

TEST(Checklist, KnowsItems) {
    for (const char* line : {"☐ ", "☑ done", "☐  two"}) EXPECT_TRUE(Checklist::isItem(line)) << line;
    for (const char* line : {"", "☐", "☐\ta", " ☐ a", "☒ a", "a ☐ ", "☑\uFE0F a", "☐ \u0301a"})
        EXPECT_FALSE(Checklist::isItem(line)) << line;
}

TEST(Checklist, TogglesTheBoxOfTheLine) {
    const struct {
        const char* text;
        std::ptrdiff_t location;
        std::optional<Edit> edit;
    } cases[] = {
        {"☑ done", 0, Edit{0, 1, "☐"}},
        {"☐ a\n☑ b\nc", 3, Edit{0, 1, "☑"}}, // the line end belongs to the line
        {"☐ a\n☑ b\nc", 4, Edit{4, 1, "☐"}},
        {"☐ a\n☑ b\nc", 8, std::nullopt},
        {"☐ a", 3, std::nullopt}, // the end
        {"☐ a", -1, std::nullopt},
        {"", 0, std::nullopt},
        {"☐ a\r\n☐ b", 4, Edit{0, 1, "☑"}}, // between CR and LF
        {"☐ a\r\n☐ b", 5, Edit{5, 1, "☑"}},
        {"👩‍👧x\n☐ b", 6, std::nullopt}, // the pair of emoji has five units
        {"👩‍👧x\n☐ b", 7, Edit{7, 1, "☑"}},
        {"😀\u2029☐ 😀", 6, Edit{3, 1, "☑"}}, // inside a surrogate pair
        {"a\u0085☐ b\u2028c", 4, Edit{2, 1, "☑"}},
        {"a\u000B☐ b", 3, std::nullopt},
        {"\xFF\n☐ b", 2, Edit{2, 1, "☑"}},
    };
    for (const auto& [text, location, edit] : cases)
        EXPECT_EQ(Checklist::toggleEdit(text, location), edit) << text << " at " << location;
}

TEST(Checklist, TurnsLinesIntoItemsAndBack) {
    const struct {
        const char* text;
        std::ptrdiff_t location;
        Edit edit;
    } cases[] = {
        {"", 7, {0, 0, "☐ "}},      {"a\n", 2, {0, 0, "☐ "}}, // the end counts as the last real line
        {"a\nb", -5, {0, 0, "☐ "}}, {"a\nb", 99, {2, 0, "☐ "}},       {"a\n☑ b", 3, {2, 2, ""}},
        {"☐ ", 1, {0, 2, ""}},      {"😀\r\n\r\nb", 4, {4, 0, "☐ "}}, // an empty line
    };
    for (const auto& [text, location, edit] : cases)
        EXPECT_EQ(Checklist::convertEdit(text, location), edit) << text << " at " << location;
}

TEST(Checklist, RebuildsPlainStringsByCharacters) {
    EXPECT_EQ(Checklist::toggle("👩‍👧\r\n☐ é\r\nc", 2), "👩‍👧\r\n☑ é\r\nc");
    EXPECT_EQ(Checklist::toggle("👩‍👧\r\n☐ é\r\nc", 1), "👩‍👧\r\n☐ é\r\nc"); // no item
    EXPECT_EQ(Checklist::toggle("☑ a\n", 3), "☐ a\n");
    EXPECT_EQ(Checklist::toggle("☑ a", 3), "☑ a");
    EXPECT_EQ(Checklist::toggle("☑ a", -1), "☑ a");
    EXPECT_EQ(Checklist::convert("", 3), "☐ ");
    EXPECT_EQ(Checklist::convert("a\nb\n", 99), "a\n☐ b\n");
    EXPECT_EQ(Checklist::convert("👩‍👧\r\n☑ é\r\nc", 3), "👩‍👧\r\né\r\nc");
    EXPECT_EQ(Checklist::convert("👩‍👧\r\nb", 2), "👩‍👧\r\n☐ b");
}

TEST(Checklist, CountsItems) {
    EXPECT_EQ(Checklist::progress("☐ a\n☑ b\nc"), (Checklist::Progress{1, 2}));
    EXPECT_EQ(Checklist::progress("☑ a\r\n☑ b\r☐ \n\n ☑ d\u2028☑ e"), (Checklist::Progress{3, 4}));
    EXPECT_EQ(Checklist::progress(""), Checklist::Progress{});
}

} // namespace
} // namespace lumnara
