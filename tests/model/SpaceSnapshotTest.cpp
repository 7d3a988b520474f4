#include "core/model/SpaceSnapshot.h"
#include "core/base/StrictJson.h"
#include "core/model/ModelJson.h"
#include "core/model/SpaceKitError.h"
#include "tests/model/Layouts.h"

#include <gtest/gtest.h>
#include <random>
#include <set>

namespace lumnara {
namespace {

using testing::makeDisplay;
using testing::makeFullscreen;
using testing::makeSpace;

const RunningApp safari{902, "com.apple.Safari", "Safari"};
const RunningApp music{640, std::nullopt, "Music"};

std::optional<std::string> keyAt(const SpaceSnapshot& snapshot, std::size_t display, std::size_t place) {
    const DisplaySpaces& spaces = snapshot.displays.at(display);
    return snapshot.key(spaces.spaces.at(place), spaces.display.uuid);
}

std::uint64_t resolved(const SpaceSnapshot& snapshot, std::string_view key) {
    const auto found = snapshot.resolve(key);
    return found ? found->space.id.raw : 0;
}

TEST(StableKey, PrimaryDesktopIsTheFirstUserSpaceWithoutUuid) {
    const SpaceSnapshot snapshot{{makeDisplay("Aa", {makeSpace(9, "", SpaceKind::system), makeSpace(1, ""),
                                                     makeSpace(2, ""), makeSpace(3, "U3")}),
                                  makeDisplay("Bb", {makeSpace(4, "U4"), makeSpace(5, "")})},
                                 {}};
    EXPECT_EQ(keyAt(snapshot, 0, 0), std::nullopt);
    EXPECT_EQ(keyAt(snapshot, 0, 1), "primary:Aa");
    EXPECT_EQ(keyAt(snapshot, 0, 2), std::nullopt);
    EXPECT_EQ(keyAt(snapshot, 0, 3), "U3");
    EXPECT_EQ(keyAt(snapshot, 1, 1), std::nullopt); // the first one there has a uuid
    EXPECT_EQ(snapshot.key(snapshot.displays[0].spaces[1], "aA"), "primary:aA");
    EXPECT_EQ(snapshot.key(snapshot.displays[0].spaces[1], "gone"), std::nullopt);

    EXPECT_EQ(resolved(snapshot, "primary:aA"), 1u);
    EXPECT_EQ(snapshot.resolve("primary:aA")->display.uuid, "Aa");
    EXPECT_EQ(resolved(snapshot, "primary:Bb"), 4u);
    EXPECT_EQ(resolved(snapshot, "primary:"), 0u);
    EXPECT_EQ(resolved(snapshot, "U3"), 3u);
    EXPECT_EQ(resolved(snapshot, "u3"), 0u);
    EXPECT_EQ(resolved(snapshot, ""), 0u);
}

TEST(StableKey, UnkeyedResolvesByItsDecimalNumber) {
    const SpaceSnapshot snapshot{
        {makeDisplay("A", {makeSpace(1, "")}), makeDisplay("B", {makeSpace(57, "")})}, {}};
    EXPECT_EQ(resolved(snapshot, "unkeyed:57"), 57u);
    for (const char* key :
         {"unkeyed:", "unkeyed:x", "unkeyed:5 7", "unkeyed:-57", "unkeyed:99999999999999999999"})
        EXPECT_EQ(resolved(snapshot, key), 0u) << key;
}

TEST(StableKey, NumbersTheFullscreenSpacesOfAnApp) {
    SpaceSnapshot snapshot{{makeDisplay("A", {makeSpace(1, "U1"), makeFullscreen(2, "U2", safari)}),
                            makeDisplay("B", {makeFullscreen(3, "U3", safari), makeFullscreen(4, "U4", music),
                                              makeFullscreen(5, "U5", {}), makeFullscreen(6, "", {})})},
                           {}};
    EXPECT_EQ(keyAt(snapshot, 0, 1), "fullscreen:com.apple.Safari");
    EXPECT_EQ(keyAt(snapshot, 1, 0), "fullscreen:com.apple.Safari#2");
    EXPECT_EQ(keyAt(snapshot, 1, 1), "fullscreen:Music");
    EXPECT_EQ(keyAt(snapshot, 1, 2), "U5");
    EXPECT_EQ(keyAt(snapshot, 1, 3), std::nullopt);

    EXPECT_EQ(resolved(snapshot, "fullscreen:com.apple.Safari"), 2u);
    EXPECT_EQ(resolved(snapshot, "fullscreen:com.apple.Safari#2"), 3u);
    EXPECT_EQ(resolved(snapshot, "fullscreen:Safari#2"), 3u); // by the name as well
    for (const char* key : {"#1", "#3", "#0", "#-2", "#", "#2x", "#99999999999999999999"})
        EXPECT_EQ(resolved(snapshot, std::string("fullscreen:com.apple.Safari") + key), 0u) << key;

    // Once the owner is known, the key changes.
    snapshot.displays[1].spaces[2].fullscreenOwner = music;
    EXPECT_EQ(keyAt(snapshot, 1, 2), "fullscreen:Music#2");
}

TEST(StableKey, AnOwnerIdMayHoldTheMark) {
    const RunningApp sharp{1, "c#", "C Sharp"};
    const SpaceSnapshot snapshot{
        {makeDisplay("A", {makeFullscreen(1, "", sharp), makeFullscreen(2, "", sharp)})}, {}};
    EXPECT_EQ(keyAt(snapshot, 0, 1), "fullscreen:c##2");
    EXPECT_EQ(resolved(snapshot, "fullscreen:c#"), 1u);
    EXPECT_EQ(resolved(snapshot, "fullscreen:c##2"), 2u);
}

TEST(SpaceSnapshot, KnowsTheSharedArrangement) {
    const SpaceSnapshot shared{{makeDisplay("Main", {makeSpace(1, "U1")})}, {}};
    EXPECT_TRUE(shared.isSharedMain());
    EXPECT_EQ(shared.presentationDisplay("X"), "Main");
    for (const auto& displays : {std::vector<DisplaySpaces>{},
                                 {makeDisplay("main", {makeSpace(1, "U1")})},
                                 {shared.displays[0], makeDisplay("B", {makeSpace(2, "U2")})}}) {
        const SpaceSnapshot separate{displays, {}};
        EXPECT_FALSE(separate.isSharedMain());
        EXPECT_EQ(separate.presentationDisplay("X"), "X");
    }
}

/// Layouts with what goes wrong in them: owners whose name is another's id, ids and uuids that stand twice,
/// missing uuids, display uuids in two cases.
SpaceSnapshot randomSnapshot(std::mt19937& random) {
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const std::optional<RunningApp> owners[] = {std::nullopt,
                                                safari,
                                                music,
                                                RunningApp{1, "Music", "Songs"},
                                                RunningApp{2, "x", "Safari"},
                                                RunningApp{3, std::nullopt, "Safari"}};
    const SpaceKind kinds[] = {SpaceKind::user, SpaceKind::user, SpaceKind::system, SpaceKind::unknown};
    SpaceSnapshot snapshot;
    snapshot.takenAt.milliseconds = below(4'000'000);
    for (int display = below(4); display >= 0; --display) {
        std::vector<Space> spaces;
        for (int count = below(7); count >= 0; --count) {
            const auto id = static_cast<std::uint64_t>(below(60));
            const std::string uuid = below(3) == 0 ? "" : "U" + std::to_string(below(80));
            if (below(2) == 0)
                spaces.push_back(makeFullscreen(id, uuid, owners[below(6)]));
            else
                spaces.push_back(makeSpace(id, uuid, kinds[below(4)]));
            if (below(2) == 0) spaces.back().managedID = below(60) - 30;
        }
        const char* const uuids[] = {"A", "a", "B", "Main"};
        snapshot.displays.push_back(makeDisplay(uuids[below(4)], std::move(spaces)));
    }
    return snapshot;
}

TEST(StableKey, AllKeysAtOnceAreThoseOneByOneAndResolve) {
    std::mt19937 random(1);
    for (int round = 0; round < 3000; ++round) {
        const SpaceSnapshot snapshot = randomSnapshot(random);
        const auto all = snapshot.allSpaces();
        const auto keys = snapshot.stableKeys();
        ASSERT_EQ(keys.size(), all.size());

        std::multiset<std::uint64_t> ids;
        std::multiset<std::string> uuids;
        for (const PlacedSpace& place : all) {
            ids.insert(place.space.id.raw);
            uuids.insert(place.space.uuid);
        }
        for (std::size_t i = 0; i < all.size(); ++i) {
            const Space& space = all[i].space;
            ASSERT_EQ(keys[i], snapshot.key(space, all[i].display.uuid))
                << "round " << round << ", Space " << i;
            if (!keys[i] || ids.count(space.id.raw) > 1 || uuids.count(space.uuid) > 1) continue;
            ASSERT_EQ(resolved(snapshot, *keys[i]), space.id.raw) << "round " << round << ": " << *keys[i];
        }
    }
}

TEST(ModelJson, ValuesComeBackEqualAndHashAlike) {
    std::mt19937 random(2);
    for (int round = 0; round < 300; ++round) {
        const SpaceSnapshot snapshot = randomSnapshot(random);
        const auto copy = fromJson<SpaceSnapshot>(toJson(snapshot));
        ASSERT_EQ(copy, snapshot);
        ASSERT_EQ(std::hash<SpaceSnapshot>{}(copy), std::hash<SpaceSnapshot>{}(snapshot));
    }
    EXPECT_EQ(toJson(SpaceID{~0ull}), R"({"raw":18446744073709551615})");
    EXPECT_EQ(toJson(music), R"({"name":"Music","pid":640})");
    EXPECT_EQ(toJson(makeSpace(7, "U", SpaceKind::unknown)),
              R"({"id":{"raw":7},"indexOnDisplay":0,"kind":-1,"uuid":"U"})");
    EXPECT_EQ(toJson(SpaceSnapshot{{}, {1'767'603'600'250}}),
              R"({"displays":[],"takenAt":"2026-01-05T09:00:00.250Z"})");
}

TEST(ModelJson, RefusesMissingFieldsAndOtherTypes) {
    for (const char* json :
         {"{}", "[]", R"({"raw": -1})", R"({"raw": 2.9})", R"({"raw": "7"})", R"({"raw": null})"})
        EXPECT_THROW(fromJson<SpaceID>(json), JsonError) << json;
    EXPECT_THROW(fromJson<RunningApp>(R"({"name": "A", "pid": 2147483648})"), JsonError);
    EXPECT_THROW(fromJson<SpaceSnapshot>(R"({"displays": [], "takenAt": "today"})"), JsonError);
    EXPECT_EQ(fromJson<Space>(R"({"id":{"raw":7},"indexOnDisplay":0,"kind":3,"uuid":""})").kind,
              SpaceKind::unknown);
}

} // namespace
} // namespace lumnara
