#pragma once

#include "core/base/Files.h"
#include "core/platform/mac/server/SnapshotParser.h"

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace lumnara::testing {

/// A recorded layout, tests/fixtures/<name>.json, with what it has to be read as, <name>.expected.json.
struct LayoutFixture {
    explicit LayoutFixture(const std::string& name)
        : path(std::filesystem::path(LUMNARA_FIXTURES) / (name + ".json")),
          expected(nlohmann::json::parse(
              readFile(std::filesystem::path(LUMNARA_FIXTURES) / (name + ".expected.json")))) {}

    /// The parsed layout with the owners of full-screen Spaces filled in, as the live provider would.
    SpaceSnapshot snapshot() const {
        SpaceSnapshot snapshot = SnapshotParser::parse(readFile(path), Date{});
        for (DisplaySpaces& display : snapshot.displays) {
            for (Space& space : display.spaces) {
                const auto owner = expected["owners"].find(space.id.text());
                if (owner == expected["owners"].end()) continue;
                RunningApp app{owner->at("pid"), {}, owner->at("name")};
                if (owner->contains("bundleID")) app.bundleID = owner->at("bundleID");
                space.fullscreenOwner = app;
            }
        }
        return snapshot;
    }

    std::map<std::string, std::string> displayNames() const { return expected["displayNames"]; }

    std::filesystem::path path;
    nlohmann::json expected;
};

inline const char* const layoutFixtures[] = {"three-displays", "shared-main", "loose-numbers"};

} // namespace lumnara::testing
