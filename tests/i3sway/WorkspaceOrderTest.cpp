#include "core/platform/i3sway/WorkspaceOrder.h"

#include <gtest/gtest.h>

namespace lumnara::testing {
namespace {

class WorkspaceOrderTest : public ::testing::Test {
protected:
    /// Desktops with these workspaces, in this order; one in brackets has none.
    void have(const std::vector<std::string>& workspaces) {
        for (std::string name : workspaces) {
            const bool isGone = name.starts_with('[');
            if (isGone) name = name.substr(1, name.size() - 2);
            RegisteredDesktop desktop{.uuid = name,
                                      .id = {desktops.size() + 1},
                                      .display = "L",
                                      .workspace = name,
                                      .ownName = name,
                                      .title = {}};
            if (!isGone) desktop.handle = static_cast<std::int64_t>(desktops.size()) + 10;
            desktops.push_back(std::move(desktop));
        }
    }
    std::vector<const RegisteredDesktop*> at(const std::vector<std::size_t>& places) {
        std::vector<const RegisteredDesktop*> found;
        for (const std::size_t place : places) found.push_back(&desktops.at(place));
        return found;
    }
    /// The places of the desktops in the order that can be kept.
    std::vector<std::size_t> keepable(const std::vector<std::size_t>& places) {
        std::vector<std::size_t> kept;
        for (const SpaceID id : WorkspaceOrder::keepable(at(places))) kept.push_back(id.raw - 1);
        return kept;
    }
    std::string steps(const std::vector<std::size_t>& places, IpcDialect dialect = IpcDialect::i3) {
        std::vector<const RegisteredDesktop*> current;
        for (const RegisteredDesktop& desktop : desktops) current.push_back(&desktop);
        std::string text;
        for (const auto& step : WorkspaceOrder::steps(current, at(places), dialect))
            text += step.uuid + ">" + (WorkspaceOrder::isPassing(step.name) ? "passing" : step.name) + " ";
        return text;
    }

    std::vector<RegisteredDesktop> desktops;
};

TEST_F(WorkspaceOrderTest, NumbersWithoutAStepInPassingWhereTheNamesDiffer) {
    have({"1: a", "3: b", "05: c"});
    EXPECT_EQ(keepable({2, 0, 1}), (std::vector<std::size_t>{2, 0, 1}));
    EXPECT_EQ(steps({2, 0, 1}), "05: c>1: c 1: a>3: a 3: b>05: b ");
    EXPECT_EQ(steps({0, 1, 2}), "");
}

TEST_F(WorkspaceOrderTest, GivesNoNameThatAnotherStillHas) {
    have({"1", "2: b", "[3]", "4"});
    EXPECT_EQ(steps({3, 1, 2, 0}), "4>passing 1>passing 4>1 1>4 ");
    EXPECT_EQ(steps({2, 0, 1, 3}), "3>1 1>2 2: b>3: b ") << "nobody is called 2, and 3 is only remembered";
}

TEST_F(WorkspaceOrderTest, KeepsThoseWithoutANumberBehind) {
    have({"1", "2nd floor", "web", "mail"});
    desktops[1].ownName = "other"; // its title begins with a number
    EXPECT_EQ(keepable({3, 2, 1, 0}), (std::vector<std::size_t>{0, 1, 3, 2}));
    EXPECT_EQ(steps({0, 1, 3, 2}), "mail>passing web>passing mail>mail web>web ");
    EXPECT_EQ(steps({0, 1, 3, 2}, IpcDialect::sway), "web>passing mail>passing web>web mail>mail ");
}

TEST_F(WorkspaceOrderTest, StandsAnyNumber) {
    constexpr auto none = WorkspaceOrder::noNumber;
    EXPECT_EQ(WorkspaceOrder::sortNumber("12: x"), 12U);
    EXPECT_EQ(WorkspaceOrder::sortNumber("x 12"), none);
    EXPECT_EQ(WorkspaceOrder::sortNumber("99999999999999999999999"), none);
    EXPECT_EQ(WorkspaceOrder::renumbered("1: a", "07"), "07: a");
    EXPECT_EQ(WorkspaceOrder::renumbered("a", "7"), "a");
    have({"99999999999999999999999", "1"});
    EXPECT_EQ(keepable({0, 1}), (std::vector<std::size_t>{1, 0}));
}

} // namespace
} // namespace lumnara::testing
