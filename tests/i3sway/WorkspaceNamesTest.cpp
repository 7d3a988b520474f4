#include "core/platform/i3sway/WorkspaceNames.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

std::string titled(IpcDialect dialect, std::string_view own, std::string_view title,
                   const std::set<std::string>& taken = {}) {
    return titledWorkspace(dialect, own, title, taken);
}

TEST(WorkspaceNames, KeepTheNumberInFrontOfTheTitle) {
    for (const auto dialect : {IpcDialect::i3, IpcDialect::sway}) {
        EXPECT_EQ(titled(dialect, "1", "Mail"), "1: Mail");
        EXPECT_EQ(titled(dialect, "07: www", "Mail"), "07: Mail");
        EXPECT_EQ(titled(dialect, "www", "Mail"), "Mail");
        EXPECT_EQ(titled(dialect, "3", ""), "3");
        EXPECT_EQ(titled(dialect, "3", "\n\x01\u0085 \u2028"), "3") << "nothing is left of the title";
        EXPECT_EQ(titled(dialect, "www", "  a\nb\x7f "), "a b");
    }
}

TEST(WorkspaceNames, AreUnique) {
    EXPECT_EQ(titled(IpcDialect::i3, "www", "Mail", {"mail"}), "Mail 2") << "in any case";
    EXPECT_EQ(titled(IpcDialect::i3, "www", "Mail", {"mail", "mail 2", "mail 4"}), "Mail 3");
    EXPECT_EQ(titled(IpcDialect::i3, "4", "Mail", {"mail", "1: mail"}), "4: Mail");
    EXPECT_EQ(titled(IpcDialect::sway, "www", "Next"), "Next 2") << "a direction is no name";
    EXPECT_EQ(titled(IpcDialect::i3, "www", "___secret"), "_secret") << "i3 keeps such names to itself";
    EXPECT_EQ(titled(IpcDialect::i3, "2", "__secret"), "2: _secret");
}

TEST(WorkspaceNames, AreQuotedAsTheWindowManagerReadsThem) {
    EXPECT_EQ(quoted(IpcDialect::i3, R"(a "b" \c)"), R"("a \"b\" \\c")");
    EXPECT_EQ(quoted(IpcDialect::i3, "$mod; it's"), "\"$mod; it's\"");
    EXPECT_EQ(quoted(IpcDialect::sway, "plain"), "\"plain\"");
    EXPECT_EQ(quoted(IpcDialect::sway, "it's $mod"), "\"it's $$mod\"");
    EXPECT_EQ(quoted(IpcDialect::sway, R"(a "b" it's)"), R"x("a "'"b" it'"'s")x");
}

TEST(WorkspaceNames, EndNoRunOfSwaysWithABackslash) {
    EXPECT_EQ(titled(IpcDialect::sway, "1", R"(end\)"), R"(1: end\ )");
    EXPECT_EQ(titled(IpcDialect::sway, "1", R"(end\\)"), R"(1: end\\)");
    EXPECT_EQ(titled(IpcDialect::sway, "1", R"(a\"b)"), R"(1: a\ "b)");
    EXPECT_EQ(titled(IpcDialect::i3, "1", R"(end\)"), R"(1: end\)");
}

TEST(WorkspaceNames, FindNumbers) {
    EXPECT_EQ(leadingDigits("12: a 3"), "12");
    EXPECT_EQ(leadingDigits("a1"), "");
    EXPECT_EQ(leadingDigits(""), "");
    EXPECT_EQ(workspaceKey("Éa B"), "Éa b");
}

} // namespace
} // namespace lumnara
