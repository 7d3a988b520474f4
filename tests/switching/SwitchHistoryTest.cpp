#include "core/switching/SwitchHistory.h"

#include "core/base/StrictJson.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using Keys = std::vector<std::string>;

SwitchHistory recorded(int capacity, const Keys& keys) {
    SwitchHistory history;
    history.capacity = capacity;
    for (const auto& key : keys) history.record(key, "D1");
    return history;
}

TEST(SwitchHistory, SkipsOnlyAdjacentRepeatsAndGoesBackAsAToggle) {
    SwitchHistory history = recorded(10, {"A", "A"});
    EXPECT_EQ(history.entries("D1"), Keys{"A"});
    EXPECT_EQ(history.previous("D1"), std::nullopt);
    EXPECT_EQ(history.current("D1"), "A");
    history.record("B", "D1");
    EXPECT_EQ(history.previous("D1"), "A");
    history.record("A", "D1");
    EXPECT_EQ(history.entries("D1"), (Keys{"A", "B", "A"}));
    EXPECT_EQ(history.previous("D1"), "B");
}

TEST(SwitchHistory, DropsTheOldestOverItsCapacity) {
    EXPECT_EQ(recorded(2, {"A", "B", "C"}).entries("D1"), (Keys{"B", "C"}));
    EXPECT_TRUE(recorded(0, {"A", "B"}).entries("D1").empty());
    EXPECT_TRUE(recorded(-3, {"A"}).entries("D1").empty());

    SwitchHistory lowered = recorded(4, {"A", "B", "C", "D"});
    lowered.capacity = 2;
    lowered.record("D", "D1");
    EXPECT_EQ(lowered.entries("D1").size(), 4u) << "a repeat changes nothing";
    lowered.record("E", "D1");
    EXPECT_EQ(lowered.entries("D1"), (Keys{"D", "E"}));
}

TEST(SwitchHistory, KeepsDisplaysApart) {
    SwitchHistory history = recorded(10, {"A", "B"});
    history.record("X", "D2");
    EXPECT_EQ(history.current("D2"), "X");
    EXPECT_EQ(history.previous("D2"), std::nullopt);
    history.clear("unknown");
    history.clear("D1");
    EXPECT_TRUE(history.entries("D1").empty());
    EXPECT_EQ(history.entries("D2"), Keys{"X"});
}

TEST(SwitchHistory, ReadsBackWhatItWrites) {
    SwitchHistory history = recorded(3, {"primary:D1", "fullscreen:org.example#2", "\"ü\""});
    history.record("X", "D2");
    EXPECT_EQ(SwitchHistory::fromJson(history.toJson()), history);
    EXPECT_EQ(recorded(2, {"A"}).toJson(), R"({"capacity":2,"perDisplay":{"D1":["A"]}})");
    for (const char* wrong :
         {R"({"perDisplay":{}})", R"({"capacity":2})", R"({"capacity":2.9,"perDisplay":{}})",
          R"({"capacity":2,"perDisplay":[]})", R"({"capacity":2,"perDisplay":{"D":[1]}})"})
        EXPECT_THROW(SwitchHistory::fromJson(wrong), JsonError) << wrong;
}

} // namespace
} // namespace lumnara
