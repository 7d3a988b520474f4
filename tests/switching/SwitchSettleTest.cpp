#include "core/switching/SwitchSettle.h"

#include <gtest/gtest.h>
#include <map>

namespace lumnara {
namespace {

TEST(SwitchSettle, FindsTheDisplaysThatDidNotStay) {
    const DisplayID stayed{"A"}, left{"B"}, silent{"C"};
    const std::map<std::string, SpaceID> shown = {{"A", {1}}, {"B", {9}}};
    std::vector<std::string> asked;
    const auto entries =
        SwitchSettle::entries({{left, {2}}, {silent, {3}}, {stayed, {1}}}, [&](const DisplayID& display) {
            asked.push_back(display.uuid);
            const auto found = shown.find(display.uuid);
            return found == shown.end() ? std::nullopt : std::optional(found->second);
        });
    EXPECT_EQ(asked, (std::vector<std::string>{"B", "C", "A"}));

    const SwitchSettle::Entry gone{left, {2}, SpaceID{9}}, unread{silent, {3}, std::nullopt};
    EXPECT_EQ(entries, (std::vector<SwitchSettle::Entry>{gone, unread, {stayed, {1}, SpaceID{1}}}));
    EXPECT_EQ(SwitchSettle::unsettled(entries), (std::vector<SwitchSettle::Entry>{gone, unread}));
    EXPECT_TRUE(SwitchSettle::unsettled({}).empty());
}

} // namespace
} // namespace lumnara
