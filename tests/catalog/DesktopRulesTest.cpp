#include "core/catalog/DesktopAppearance.h"
#include "core/catalog/DesktopCandidates.h"
#include "core/catalog/DesktopOrder.h"
#include "tests/model/Layouts.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

Desktop makeDesktop(std::string key, std::optional<std::string> name = {}) {
    Desktop desktop;
    desktop.key = desktop.spaceKey = std::move(key);
    desktop.space = testing::makeSpace(1, desktop.key);
    desktop.display = {"A"};
    if (name) desktop.record.emplace().name = *name;
    return desktop;
}

std::string keysAfter(const std::string& keys, const std::vector<std::string>& order) {
    std::vector<Desktop> desktops;
    for (const char key : keys) {
        desktops.push_back(makeDesktop(std::string(1, key)));
        desktops.back().space.id.raw = desktops.size();
    }
    std::string ordered;
    for (const Desktop& desktop : DesktopOrder::apply(std::move(desktops), order))
        ordered += desktop.key + desktop.space.id.text();
    return ordered;
}

TEST(DesktopOrder, AppliesWhatItKnowsAndAppendsTheRest) {
    EXPECT_EQ(keysAfter("abc", {}), "a1b2c3");
    EXPECT_EQ(keysAfter("abc", {"c", "x", "a"}), "c3a1b2");
    EXPECT_EQ(keysAfter("abc", {"c", "c", "b", "c"}), "c3b2a1");
    EXPECT_EQ(keysAfter("aba", {"b", "a", "a"}), "b2a1a3"); // one key twice: no desktop is lost
    EXPECT_EQ(keysAfter("", {"a"}), "");
}

TEST(DesktopOrder, RearrangesOnlyWhatItNames) {
    using Keys = std::vector<std::string>;
    EXPECT_EQ(DesktopOrder::rearranged({"a", "b", "c", "d"}, {"d", "b"}), (Keys{"a", "d", "c", "b"}));
    EXPECT_EQ(DesktopOrder::rearranged({"a", "b"}, {"x", "b", "y", "a"}), (Keys{"b", "a"}));
    EXPECT_EQ(DesktopOrder::rearranged({"a", "b", "a"}, {"b", "a"}), (Keys{"b", "a", "a"}));
    EXPECT_EQ(DesktopOrder::rearranged({}, {"a"}), Keys{});
}

TEST(DesktopAppearance, HashesTheLowercasedName) {
    EXPECT_EQ(DesktopAppearance::hash(""), 0xcbf29ce484222325u);
    EXPECT_EQ(DesktopAppearance::hash("a"), 0xaf63dc4c8601ec8cu); // the published FNV-1a test vectors
    EXPECT_EQ(DesktopAppearance::hash("FOOBAR"), 0x85944171f73967e8u);
    EXPECT_EQ(DesktopAppearance::hash("ÄÖ"), DesktopAppearance::hash("äö"));
}

TEST(DesktopAppearance, SuggestsAColourByName) {
    const auto mail = DesktopAppearance::suggestedColor("Mail");
    ASSERT_TRUE(mail);
    EXPECT_EQ(mail, DesktopAppearance::suggestedColor(" mail\n"));
    EXPECT_EQ(mail, DesktopAppearance::palette[DesktopAppearance::hash("mail") % 10]);
    EXPECT_EQ(DesktopAppearance::suggestedColor("   "), std::nullopt);
}

TEST(DesktopAppearance, ChoosesASymbol) {
    Desktop desktop = makeDesktop("U1");
    EXPECT_EQ(DesktopAppearance::symbol(desktop), "square.dashed");
    desktop.record.emplace().name = "  ";
    EXPECT_EQ(DesktopAppearance::symbol(desktop), "square.dashed");
    desktop.record->name = "foobar";
    EXPECT_EQ(DesktopAppearance::symbol(desktop), DesktopAppearance::symbols[0x85944171f73967e8u % 6]);
    desktop.record->icon = "";
    EXPECT_EQ(DesktopAppearance::symbol(desktop), DesktopAppearance::symbols[0x85944171f73967e8u % 6]);
    desktop.space.kind = SpaceKind::fullscreen;
    EXPECT_EQ(DesktopAppearance::symbol(desktop), "macwindow");
    desktop.record->icon = "envelope";
    EXPECT_EQ(DesktopAppearance::symbol(desktop), "envelope");
}

TEST(DesktopCandidates, AreHeardByNameAliasesAndOwner) {
    Desktop mail = makeDesktop("U1", "Mail");
    mail.record->aliases = {"post"};
    mail.space.indexOnDisplay = 4;
    mail.userNumber = 3;
    Desktop plain = makeDesktop("U2");
    plain.userNumber = 2;
    Desktop iconOnly = makeDesktop("U3", "");
    iconOnly.userNumber = 5;
    Desktop movie = makeDesktop("F", "Movie");
    movie.space = testing::makeFullscreen(7, "F", RunningApp{1, {}, "Player"});
    Desktop player = movie;
    player.record.reset();
    Desktop unknown = makeDesktop("G");
    unknown.space = testing::makeFullscreen(8, "G", {});

    const auto heard = candidates({mail, plain, iconOnly, movie, player, unknown});
    EXPECT_EQ(heard[0], (Candidate{"U1", {"A"}, 4, 3, {"Mail", "post"}}));
    EXPECT_EQ(heard[1].phrases, std::vector<std::string>{"Desktop 2"});
    EXPECT_EQ(heard[2].phrases, std::vector<std::string>{"Desktop 5"});
    EXPECT_EQ(heard[3].phrases, (std::vector<std::string>{"Movie", "Player"}));
    EXPECT_EQ(heard[4].phrases, std::vector<std::string>{"Player"});
    EXPECT_EQ(heard[5].phrases, std::vector<std::string>{"Fullscreen app"});
}

} // namespace
} // namespace lumnara
