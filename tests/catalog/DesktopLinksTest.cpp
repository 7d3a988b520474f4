#include "core/catalog/DesktopOrder.h"
#include "core/names/DisplayLink.h"
#include "core/names/NameError.h"
#include "tests/catalog/CatalogTest.h"

#include <utility>

namespace lumnara {
namespace {

using testing::failureOf;
using testing::makeDisplay;
using testing::makeSpace;

using Names = std::vector<std::string>;

/// Three displays: A with U1 and U2, B with V1 and V2, C with W1. Links hold.
class DesktopLinksTest : public testing::CatalogTest {
protected:
    DesktopLinksTest() {
        provider.current.displays = {a, b, c};
        start();
        catalog->setLinkMode(DisplayLinkMode::linked);
    }

    std::string groupOf(const std::string& spaceKey) {
        const auto contents = store->file();
        const auto id = DisplayLink::groupOf(*contents, spaceKey);
        return id ? DisplayLink::key(*id) : "";
    }
    std::size_t groups() const {
        const auto contents = store->file();
        return contents->links ? contents->links->size() : 0;
    }
    void putLinks(NameStoreFile::Map<DisplayLink::Members> links) {
        store->change([&](NameStoreFile& file) {
            file.links = std::move(links);
            for (const auto& [id, members] : *file.links) file.desktops[DisplayLink::key(id)].name = id;
        });
    }

    const DisplaySpaces a = makeDisplay("A", {makeSpace(1, "U1"), makeSpace(2, "U2")});
    const DisplaySpaces b = makeDisplay("B", {makeSpace(11, "V1"), makeSpace(12, "V2")});
    const DisplaySpaces c = makeDisplay("C", {makeSpace(21, "W1")});
};

TEST_F(DesktopLinksTest, LinkedDesktopsAreOneAndComeApartAgain) {
    catalog->rename("U1", "Mail");
    catalog->setAliases("U1", {"letters"});
    catalog->rename("V1", "Web");
    Names linked;
    catalog->onLinked = [&](const std::string& x, const std::string& y) { linked = {x, y}; };
    EXPECT_TRUE(catalog->link("U1", "V1"));
    EXPECT_EQ(linked, (Names{"U1", "V1"}));
    const std::string key = groupOf("U1");
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2", "Mail, Desktop 2", "Desktop 1"}));
    EXPECT_TRUE(at(0, 0).isLinked());
    EXPECT_EQ(at(1, 0).key, key);
    EXPECT_EQ(at(1, 0).record->lastSeen, std::nullopt); // a group isn't tied to one place
    EXPECT_EQ(*catalog->activeLinkCount, 1);
    EXPECT_TRUE(catalog->orphans->empty()); // their own records only wait

    for (const std::string& of : {key, std::string("U1"), std::string("V1")}) {
        EXPECT_EQ(catalog->linkedMembers(of).size(), 2u) << of;
        EXPECT_EQ(catalog->linkedDesktop(of, "b")->spaceKey, "V1") << of;
        EXPECT_EQ(catalog->linkedDesktop(of, "C"), nullptr) << of;
    }
    EXPECT_TRUE(catalog->linkedMembers("U2").empty());
    EXPECT_EQ(catalog->linkedDesktop("U2", "A"), nullptr);

    catalog->rename(at(1, 0).key, "Post"); // edits go to the group
    catalog->setDimmed(key, true);
    EXPECT_EQ(shown(), (Names{"Post, Desktop 2", "Post, Desktop 2", "Desktop 1"}));
    EXPECT_TRUE(at(0, 0).record->isDimmed);

    lines.clear();
    catalog->unlink("V1", "unlinked by a test");
    EXPECT_EQ(lines, Names{"Lumnara link " + key.substr(5) + ": unlinked by a test"});
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2", "Web, Desktop 2", "Desktop 1"}));
    EXPECT_EQ(at(0, 0).record->aliases, Names{"letters"});
    EXPECT_EQ(*catalog->activeLinkCount, 0);
    EXPECT_EQ(store->record(key), std::nullopt);
    catalog->unlink("V1", "again");
    catalog->unlink(key, "again");
    EXPECT_EQ(lines.size(), 1u);
}

TEST_F(DesktopLinksTest, TheGroupsRecordIsTheFirstOnesElseTheSeconds) {
    catalog->rename("V1", "Web");
    catalog->link("U1", "V1");
    EXPECT_EQ(at(0, 0).displayName(), "Web");
    catalog->link("U2", "V2");
    EXPECT_EQ(at(0, 1).displayName(), "Desktop 2");
    ASSERT_TRUE(at(0, 1).record); // an empty one
    EXPECT_EQ(at(0, 1).record->createdAt, loop.date());
    catalog->rename(at(0, 1).key, "Both");
    EXPECT_EQ(at(1, 1).displayName(), "Both");
}

TEST_F(DesktopLinksTest, ARefusedLinkChangesNothing) {
    catalog->link("U1", "V1");
    const auto before = store->file();
    catalog->onLinked = [](const auto&, const auto&) { FAIL(); };
    lines.clear();
    EXPECT_FALSE(catalog->link("U1", "U2"));
    EXPECT_FALSE(catalog->link("U1", "U1"));
    EXPECT_FALSE(catalog->link("gone", "U1"));
    EXPECT_FALSE(catalog->link("U1", "gone"));
    EXPECT_EQ(lines.front(),
              "Lumnara link: refused, U2 is not on another display or is on the same display as U1");
    EXPECT_EQ(lines.size(), 4u);
    EXPECT_TRUE(catalog->link("V1", "U1")); // so it is already
    EXPECT_EQ(store->file(), before);
}

TEST_F(DesktopLinksTest, ADesktopLeavesItsGroupForAnother) {
    catalog->rename("U1", "Mail");
    catalog->link("U1", "V1");
    catalog->rename(groupOf("U1"), "Post");
    catalog->link(groupOf("U1"), "W1"); // a third display makes no group of three
    EXPECT_EQ(groups(), 1u);
    EXPECT_EQ(groupOf("V1"), "");
    EXPECT_EQ(shown(), (Names{"Post, Desktop 2", "Desktop 1, Desktop 2", "Post"})); // the name it had last

    putLinks({{"THREE", {{"A", "U1"}, {"B", "V1"}, {"C", "W1"}}}});
    catalog->refresh();
    EXPECT_EQ(catalog->linkedMembers("V1").size(), 3u);
    EXPECT_EQ(*catalog->activeLinkCount, 1);
    catalog->link("V1", "U2");
    EXPECT_EQ(groupOf("U1"), "link:THREE"); // the two others stay together
    EXPECT_EQ(groupOf("W1"), "link:THREE");
    EXPECT_NE(groupOf("V1"), "link:THREE");
    EXPECT_EQ(groupOf("V1"), groupOf("U2"));
    EXPECT_EQ(*catalog->activeLinkCount, 2);
}

TEST_F(DesktopLinksTest, IndependentDisplaysKeepTheLinksInTheFile) {
    catalog->rename("U1", "Mail");
    catalog->rename("V1", "Web");
    catalog->link("U1", "V1");
    const std::string key = groupOf("U1");
    catalog->rename(key, "Both");
    const auto links = store->file()->links;
    const int readings = provider.readings;
    EXPECT_TRUE(catalog->isLinkAvailable());
    catalog->setLinkMode(DisplayLinkMode::independent);
    EXPECT_FALSE(catalog->isLinkAvailable());
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2", "Web, Desktop 2", "Desktop 1"}));
    EXPECT_EQ(at(0, 0).key, "U1");
    EXPECT_EQ(*catalog->activeLinkCount, 0);
    EXPECT_TRUE(catalog->orphans->empty());
    EXPECT_TRUE(catalog->linkedMembers("U1").empty());
    EXPECT_EQ(store->file()->links, links);
    catalog->setLinkMode(DisplayLinkMode::linked);
    EXPECT_EQ(shown(), (Names{"Both, Desktop 2", "Both, Desktop 2", "Desktop 1"}));
    EXPECT_EQ(provider.readings, readings);
    show({a});
    EXPECT_FALSE(catalog->isLinkAvailable());
}

TEST_F(DesktopLinksTest, AMemberIsPrunedAfterFiveSecondsOfRefreshes) {
    catalog->rename("U1", "Mail");
    catalog->link("U1", "V1");
    const std::string key = groupOf("U1");
    catalog->rename(key, "Both");
    lines.clear();
    show({a, c});
    loop.advance(4);
    catalog->refresh(); // nothing has changed but the time
    EXPECT_EQ(shown().front(), "Both, Desktop 2");
    EXPECT_EQ(*catalog->activeLinkCount, 0);
    EXPECT_EQ(catalog->linkedMembers(key).size(), 1u);
    show({a, b, c}); // back in time
    EXPECT_EQ(*catalog->activeLinkCount, 1);
    show({a, c});
    loop.advance(4);
    catalog->refresh();
    EXPECT_EQ(groups(), 1u);
    loop.advance(1);
    catalog->refresh();
    EXPECT_EQ(lines,
              Names{"Lumnara link " + key.substr(5) + ": pruned, desktop gone: V1 on B (3 live keys)"});
    EXPECT_EQ(groups(), 0u);
    EXPECT_EQ(store->record(key), std::nullopt);
    EXPECT_EQ(shown().front(), "Mail, Desktop 2");
    EXPECT_EQ(at(0, 0).record->lastSeen->at,
              loop.date().plusSeconds(-9)); // from before the link, still right
    EXPECT_TRUE(catalog->orphans->empty());

    catalog->rename(key, "Too late"); // of a surface that still shows the group
    catalog->setIcon(key, "envelope");
    EXPECT_EQ(store->record(key), std::nullopt);
}

TEST_F(DesktopLinksTest, NothingElseHasToHappenForAPruning) {
    catalog->link("U1", "V1");
    show({a, c});
    loop.advance(4.9);
    EXPECT_EQ(groups(), 1u);
    loop.advance(0.2);
    EXPECT_EQ(groups(), 0u);
    loop.advance(1);
    EXPECT_FALSE(loop.hasTimer()) << "once it is done, nothing goes on";

    // The display's desktops may also have come to another one.
    show({a, b, c});
    catalog->link("U1", "V1");
    DisplaySpaces both = a;
    both.spaces.insert(both.spaces.end(), b.spaces.begin(), b.spaces.end());
    show({both, c});
    EXPECT_EQ(groups(), 1u);
    loop.advance(5.1);
    EXPECT_EQ(groups(), 0u);
}

TEST_F(DesktopLinksTest, ASharedArrangementAppliesNoLink) {
    catalog->link("U1", "V1");
    show({makeDisplay("Main", {makeSpace(1, "U1"), makeSpace(2, "U2")})});
    EXPECT_FALSE(at(0, 0).isLinked());
    EXPECT_FALSE(catalog->isLinkAvailable());
    loop.advance(4.9);
    catalog->refresh();
    EXPECT_EQ(groups(), 1u);
    show({a, b, c});
    EXPECT_TRUE(at(0, 0).isLinked());
    show({makeDisplay("Main", {makeSpace(1, "U1"), makeSpace(2, "U2")})});
    loop.advance(5);
    catalog->refresh();
    EXPECT_EQ(groups(), 0u);
}

TEST_F(DesktopLinksTest, MembersThatMeetOnADisplayDoNotShareAKeyThere) {
    catalog->rename("U1", "Mail");
    catalog->rename("V1", "Web");
    catalog->link("U1", "V1");
    show({makeDisplay("a", {makeSpace(11, "V1"), makeSpace(1, "U1")}), c});
    EXPECT_EQ(shown(), (Names{"Web, Mail", "Desktop 1"}));
    EXPECT_EQ(at(0, 0).key, "V1");
    EXPECT_TRUE(at(0, 1).isLinked()); // the group has it for this display
    EXPECT_EQ(*catalog->activeLinkCount, 0);
    show({c, makeDisplay("B", {makeSpace(1, "U1")}), makeDisplay("A", {makeSpace(11, "V1")})});
    EXPECT_EQ(shown(), (Names{"Desktop 1", "Mail", "Mail"})); // each moved: still on two displays
    EXPECT_EQ(*catalog->activeLinkCount, 1);
    loop.advance(10);
    catalog->refresh();
    EXPECT_EQ(groups(), 1u);
}

TEST_F(DesktopLinksTest, OddGroupsOfTheFileDoNoHarm) {
    putLinks({{"DEAD", {{"A", "X"}, {"B", "Y"}}},
              {"ONE", {{"A", "U1"}}},
              {"SAME", {{"B", "V2"}, {"C", "V2"}}},
              {"SPELT", {{"A", "U1"}, {"a", "U2"}}},
              {"TWICE", {{"B", "V1"}, {"A", "U1"}}}});
    catalog->refresh();
    EXPECT_EQ(shown(), (Names{"SPELT, Desktop 2", "TWICE, Desktop 2", "Desktop 1"}));
    EXPECT_TRUE(catalog->orphans->empty());
    loop.advance(5);
    catalog->refresh();
    EXPECT_EQ(groups(), 1u) << "one display, however it is spelt, makes no pair";
    EXPECT_EQ(shown(), (Names{"TWICE, Desktop 2", "TWICE, Desktop 2", "Desktop 1"}));
    catalog->link("U1", "W1");
    EXPECT_EQ(groups(), 1u);
    EXPECT_EQ(shown(), (Names{"TWICE, Desktop 2", "Desktop 1, Desktop 2", "TWICE"}));
}

TEST_F(DesktopLinksTest, ForgettingAGroupDissolvesIt) {
    catalog->rename("U1", "Mail");
    catalog->link("U1", "V1");
    const std::string key = groupOf("U1");
    lines.clear();
    catalog->forget(key);
    EXPECT_EQ(lines, Names{"Lumnara link " + key.substr(5) + ": forgotten"});
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2", "Desktop 1, Desktop 2", "Desktop 1"}));
    EXPECT_EQ(groups(), 0u);
    EXPECT_EQ(store->file()->desktops.size(), 1u);
}

TEST_F(DesktopLinksTest, AGroupsNameIsUniqueOnAllItsDisplays) {
    catalog->rename("U2", "Web");
    catalog->rename("V2", "Mail");
    catalog->rename("W1", "Chat");
    catalog->link("U1", "V1");
    const std::string key = groupOf("U1");
    EXPECT_EQ(failureOf<NameError>([&] { catalog->rename(key, "web"); }),
              NameError::duplicateOnDisplay("Web"));
    EXPECT_EQ(failureOf<NameError>([&] { catalog->rename(key, "mail"); }),
              NameError::duplicateOnDisplay("Mail"));
    catalog->rename(key, "Chat");
    catalog->rename(key, "CHAT"); // its own members don't stand in its way
    EXPECT_EQ(failureOf<NameError>([&] { catalog->rename("V2", "chat"); }),
              NameError::duplicateOnDisplay("CHAT"));
}

TEST_F(DesktopLinksTest, LinksWhatHasOneNameOnTwoDisplays) {
    catalog->rename("U1", "Mail");
    catalog->rename("V2", "MÁIL");
    catalog->rename("W1", "mail"); // the third of that name has no partner left
    catalog->setIcon("U2", "envelope");
    catalog->setIcon("V1", "envelope"); // no names
    const auto pairs = catalog->linkCandidates();
    ASSERT_EQ(pairs.size(), 1u);
    EXPECT_EQ(pairs[0].first.spaceKey, "U1");
    EXPECT_EQ(pairs[0].second.spaceKey, "V2");
    catalog->linkAll();
    EXPECT_EQ(shown(), (Names{"Mail, Desktop 2", "Desktop 1, Mail", "mail"}));
    EXPECT_EQ(groups(), 1u);
    EXPECT_TRUE(catalog->linkCandidates().empty());
    catalog->setLinkMode(DisplayLinkMode::independent);
    EXPECT_TRUE(catalog->linkCandidates().empty()); // linked all the same
}

TEST_F(DesktopLinksTest, LinkingKeepsTheUsersOrder) {
    catalog->commitOrder({"U2", "U1"}, "A");
    catalog->link("U2", "V2");
    EXPECT_EQ(at(0, 0).spaceKey, "U2");
    catalog->commitOrder({"U1", groupOf("U2")}, "A");
    EXPECT_EQ(at(0, 1).spaceKey, "U2");
}

} // namespace
} // namespace lumnara
