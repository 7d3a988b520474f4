#include "core/platform/x11/Edid.h"

#include "tests/support/EdidBlock.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using testing::edidBlock;
using testing::withDescriptor;

const std::string named = withDescriptor(edidBlock(), 72, '\xFC', "DELL U2720Q\n");

TEST(EdidTest, ReadsMakerModelAndSerialNumber) {
    EXPECT_EQ(parseEdid(named), (Edid{"DEL", 0xA0B1, "DELL U2720Q", "305419896"}));
    EXPECT_EQ(parseEdid(withDescriptor(named, 90, '\xFF', "7FJ1 \n"))->serial, "7FJ1");
    // A detailed timing begins with its pixel clock and is no descriptor, whatever follows.
    auto timing = withDescriptor(named, 54, '\xFF', "WRONG\n");
    timing[54] = 1;
    EXPECT_EQ(parseEdid(timing)->serial, "305419896");
    EXPECT_EQ(parseEdid(named + std::string(128, 'x')), parseEdid(named));
}

TEST(EdidTest, DoesWithoutWhatIsLeftOut) {
    EXPECT_EQ(parseEdid(edidBlock())->model(), "0xA0B1");
    auto anonymous = named;
    anonymous.replace(12, 4, std::string(4, '\0'));
    EXPECT_EQ(parseEdid(anonymous)->serial, std::nullopt);
    anonymous.replace(12, 4, "\x01\x01\x01\x01");
    EXPECT_EQ(parseEdid(anonymous)->serial, std::nullopt);
    EXPECT_EQ(parseEdid(withDescriptor(anonymous, 90, '\xFF', " \n"))->serial, std::nullopt);
    EXPECT_EQ(parseEdid(withDescriptor(edidBlock(), 72, '\xFC', "\x01Pa\xFFnel\n"))->name, "Panel");
}

TEST(EdidTest, RefusesWhatIsNoBlock) {
    EXPECT_EQ(parseEdid({}), std::nullopt);
    EXPECT_EQ(parseEdid(named.substr(0, 127)), std::nullopt);
    EXPECT_EQ(parseEdid("x" + named), std::nullopt);
}

TEST(MonitorIdentitiesTest, FollowTheMonitorWhereItCanBeTold) {
    const Edid one{"DEL", 1, "DELL U2720Q", "A"};
    const Edid other{"DEL", 1, "DELL U2720Q", "B"};
    const Edid nameless{"BOE", 0x1234, "", std::nullopt};
    EXPECT_EQ(
        monitorIdentities({{"DP-1", one}, {"DP-2", other}, {"eDP-1", nameless}, {"VGA-1", {}}}),
        (std::vector<std::string>{"DEL DELL U2720Q A", "DEL DELL U2720Q B", "BOE 0x1234 eDP-1", "VGA-1"}));
    EXPECT_EQ(monitorIdentities({{"DP-2", one}}), std::vector<std::string>{"DEL DELL U2720Q A"});
    EXPECT_EQ(monitorIdentities({{"DP-1", one}, {"DP-2", one}}),
              (std::vector<std::string>{"DEL DELL U2720Q A DP-1", "DEL DELL U2720Q A DP-2"}));
}

} // namespace
} // namespace lumnara
