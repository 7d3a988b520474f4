#include "core/platform/ewmh/RememberedDesktop.h"

#include <gtest/gtest.h>
#include <set>

namespace lumnara {
namespace {

using Texts = std::vector<std::string>;

/// Mints "new1", "new2" ...
UuidMint counting() {
    return [n = 0]() mutable { return "new" + std::to_string(++n); };
}

TEST(NulListTest, ReadsListsWithAndWithoutTheLastNul) {
    using namespace std::string_view_literals;
    EXPECT_EQ(splitNulList("one\0two\0"sv), (Texts{"one", "two"}));
    EXPECT_EQ(splitNulList("one\0two"sv), (Texts{"one", "two"}));
    EXPECT_EQ(splitNulList("\0\0x"sv), (Texts{"", "", "x"}));
    EXPECT_EQ(splitNulList(""sv), Texts{});
    EXPECT_EQ(splitNulList(joinNulList({"", "a", ""})), (Texts{"", "a", ""}));
}

TEST(CompletedUuidsTest, GrowsKeepsTheTailAndMendsTheList) {
    EXPECT_EQ(completedUuids({"a", "b"}, 3, counting()), (Texts{"a", "b", "new1"}));
    EXPECT_EQ(completedUuids({"a", "b", "c"}, 1, counting()), (Texts{"a", "b", "c"}));
    EXPECT_EQ(completedUuids({"a", "", "a", "\xFF", "b"}, 2, counting()),
              (Texts{"a", "new1", "new2", "new3", "b"}));
}

TEST(RecalledUuidsTest, GoesByNameThenByPlace) {
    const std::vector<RememberedDesktop> remembered{{"A", "mail"}, {"B", "web"}, {"C", "code"}};
    EXPECT_EQ(recalledUuids(remembered, {"mail", "web", "code"}, counting()), (Texts{"A", "B", "C"}));
    EXPECT_EQ(recalledUuids(remembered, {"web", "mail", "code"}, counting()), (Texts{"B", "A", "C"}));
    EXPECT_EQ(recalledUuids(remembered, {"", "", ""}, counting()), (Texts{"A", "B", "C"}));
    EXPECT_EQ(recalledUuids(remembered, {"code", "x", "y", "z"}, counting()),
              (Texts{"C", "B", "new1", "new2"}));
    EXPECT_EQ(recalledUuids({}, {"mail"}, counting()), Texts{"new1"});
}

TEST(RecalledUuidsTest, KnowsADesktopByTheNameThatItsUsersNameReplaced) {
    // Two desktops whose user gave the first the name that the window manager has for the second.
    const std::vector<RememberedDesktop> remembered{{"A", "two", RememberedDesktop::Renamed{"two", "one"}},
                                                    {"B", "mail", RememberedDesktop::Renamed{"mail", "two"}}};
    EXPECT_EQ(recalledUuids(remembered, {"one", "two"}, counting()), (Texts{"A", "B"}));
    EXPECT_EQ(recalledUuids(remembered, {"two", "mail"}, counting()), (Texts{"A", "B"}));
}

TEST(RecalledUuidsTest, KeepsOnlyWhatStoodBeyondTheLastDesktop) {
    const std::vector<RememberedDesktop> remembered{{"A", "a"}, {"B", "b"}, {"C", "c"}, {"D", "d"}};
    EXPECT_EQ(recalledUuids(remembered, {"a", "d"}, counting()), (Texts{"A", "D", "C"}));
    EXPECT_EQ(recalledUuids(remembered, {"b", "c"}, counting()), (Texts{"B", "C", "D"}));
}

TEST(SpaceIDsTest, AreStableDistinctAndNotZero) {
    const auto ids = spaceIDsOf({"a", "b", "a", ""});
    EXPECT_EQ(ids, spaceIDsOf({"a", "b", "a", ""}));
    EXPECT_EQ(ids[0], spaceIDsOf({"a"})[0]);
    std::set<SpaceID> distinct(ids.begin(), ids.end());
    EXPECT_EQ(distinct.size(), 4U);
    EXPECT_FALSE(distinct.contains(SpaceID{0}));
}

class NamesToShowTest : public ::testing::Test {
protected:
    Texts show(const Texts& shown, std::size_t count, const std::map<std::string, std::string>& wanted) {
        return namesToShow(shown, count, wanted, desktops);
    }

    std::vector<RememberedDesktop> desktops{{"A", ""}, {"B", ""}, {"C", ""}};
};

TEST_F(NamesToShowTest, ReplacesTheWantedNamesOnly) {
    EXPECT_EQ(show({"1", "2", "\xFF", "4"}, 3, {{"B", "mail"}}), (Texts{"1", "mail", "\xFF", "4"}));
    EXPECT_EQ(show({"1"}, 3, {{"B", "mail"}}), (Texts{"1", "mail"}));
    EXPECT_EQ(show({"1"}, 3, {{"C", "mail"}}), (Texts{"1", "", "mail"}));
    EXPECT_EQ(show({"1", "", ""}, 3, {}), (Texts{"1", "", ""}));
    EXPECT_EQ(show({"1", "", ""}, 3, {{"A", "mail"}}), (Texts{"mail"}));
    EXPECT_EQ(show({}, 3, {}), Texts{});
    EXPECT_EQ(show({"1"}, 1, {{"B", "mail"}}), Texts{"1"});
}

TEST_F(NamesToShowTest, GivesTheWindowManagersNamesBack) {
    EXPECT_EQ(show({"1", "2"}, 3, {{"A", "mail"}, {"C", "code"}}), (Texts{"mail", "2", "code"}));
    EXPECT_EQ(show({"mail", "2", "code"}, 3, {{"A", "post"}, {"C", "code"}}), (Texts{"post", "2", "code"}));
    EXPECT_EQ(show({"post", "2", "code"}, 3, {}), (Texts{"1", "2"}));
    EXPECT_EQ(desktops[0].renamed, std::nullopt);
}

TEST_F(NamesToShowTest, FollowsAWindowManagerThatStartsAnew) {
    show({"1", "2", "3"}, 3, {{"A", "mail"}});
    EXPECT_EQ(show({"eins", "zwei"}, 2, {{"A", "mail"}}), (Texts{"mail", "zwei"}));
    EXPECT_EQ(show({"mail", "zwei"}, 2, {}), (Texts{"eins", "zwei"}));
}

TEST_F(NamesToShowTest, LeavesANameThatAnotherProgramSetMeanwhile) {
    show({"1", "2", "3"}, 3, {{"A", "mail"}});
    EXPECT_EQ(show({"theirs", "2", "3"}, 3, {}), (Texts{"theirs", "2", "3"}));
    EXPECT_EQ(show({"theirs", "2", "3"}, 3, {{"A", "theirs"}}), (Texts{"theirs", "2", "3"}));
    EXPECT_EQ(show({"theirs", "2", "3"}, 3, {}), (Texts{"theirs", "2", "3"}));
}

} // namespace
} // namespace lumnara
