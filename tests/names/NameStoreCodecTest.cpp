#include "core/names/NameStoreCodec.h"
#include "core/names/NameStoreError.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lumnara {
namespace {

using nlohmann::json;

const Date now{1'767'603'600'000}; // 2026-01-05T09:00:00Z

/// A file with every member that there is.
const char* const fullFile = R"({
  "desktops": {
    "1D2C3B4A-0000-4000-8000-000000000001": {
      "aliases": ["mail", "Post"],
      "color": "teal",
      "createdAt": "2026-01-05T09:00:00Z",
      "icon": "envelope",
      "isDimmed": true,
      "lastSeen": {
        "at": "2026-01-05T10:00:00+01:00",
        "displayName": "Built-in Display",
        "displayUUID": "37D8832A-2D66-02CA-B9F7-8F30A301B230",
        "indexOnDisplay": 1,
        "spaceCount": 4
      },
      "name": "Mail"
    }
  },
  "links": { "AB12CD34": { "37D8832A": "primary:37D8832A", "8A1F27C4": "1D2C3B4A" } },
  "order": { "37D8832A": ["primary:37D8832A", "1D2C3B4A"] },
  "schemaVersion": 2,
  "updatedAt": "2026-01-05T09:00:07Z"
})";

bool isDamaged(const std::string& text) {
    try {
        NameStoreCodec::decode(text, now);
        return false;
    } catch (const std::exception&) {
        return true;
    }
}

TEST(NameStoreCodec, ReadsEveryMember) {
    const NameStoreFile file = NameStoreCodec::decode(fullFile, now);
    const LastSeen seen{"37D8832A-2D66-02CA-B9F7-8F30A301B230", "Built-in Display", 1, now, 4};
    const DesktopRecord mail{"Mail", {"mail", "Post"}, "envelope", "teal", true, now, seen, {}};
    EXPECT_EQ(file.desktops,
              (NameStoreFile::Map<DesktopRecord>{{"1D2C3B4A-0000-4000-8000-000000000001", mail}}));
    EXPECT_EQ(file.updatedAt, now.plusSeconds(7));
    EXPECT_EQ(*file.order,
              (NameStoreFile::Map<std::vector<std::string>>{{"37D8832A", {"primary:37D8832A", "1D2C3B4A"}}}));
    EXPECT_EQ(file.links->at("AB12CD34").at("8A1F27C4"), "1D2C3B4A");
}

TEST(NameStoreCodec, WritesSortedAndPrettyAndWithoutAbsentOptionals) {
    NameStoreFile file;
    file.updatedAt = now.plusSeconds(0.999);
    file.desktops["U2"].createdAt = now;
    file.desktops["U2"].name = "Line\nfeed \x01 \"quoted\" 👩‍👩‍👧";
    EXPECT_EQ(NameStoreCodec::encode(file), R"({
  "desktops": {
    "U2": {
      "aliases": [],
      "createdAt": "2026-01-05T09:00:00Z",
      "isDimmed": false,
      "name": "Line\nfeed \u0001 \"quoted\" 👩‍👩‍👧"
    }
  },
  "schemaVersion": 2,
  "updatedAt": "2026-01-05T09:00:00Z"
}
)");
    EXPECT_EQ(NameStoreCodec::decode(NameStoreCodec::encode(file), now).desktops, file.desktops);
}

TEST(NameStoreCodec, KeepsWhatItDoesNotKnow) {
    json root = json::parse(fullFile);
    auto& record = root["desktops"].begin().value();
    record["x-badge"] = {{"count", 3}};
    root["profiles"] = {"home", 2.5, nullptr};
    const NameStoreFile file = NameStoreCodec::decode(root.dump(), now);
    root["desktops"].begin().value()["lastSeen"]["at"] = "2026-01-05T09:00:00Z"; // in UTC
    EXPECT_EQ(json::parse(NameStoreCodec::encode(file)), root);
}

TEST(NameStoreCodec, ReadsOlderAndSparseFiles) {
    for (const char* schema :
         {R"("schemaVersion": 1,)", "", R"("schemaVersion": "3",)", R"("schemaVersion": 3.0,)",
          R"("schemaVersion": null,)", R"("schemaVersion": 2,)"}) {
        const std::string text = std::string("{") + schema +
                                 R"("updatedAt": "2026-01-05T09:00:00Z", "links": null,
                                    "desktops": {"U1": {"name": "", "icon": null, "createdAt": null}}})";
        const NameStoreFile file = NameStoreCodec::decode(text, now);
        EXPECT_EQ(file.schemaVersion, 2) << schema;
        DesktopRecord empty;
        empty.createdAt = now;
        EXPECT_EQ(file.desktops.at("U1"), empty);
        EXPECT_FALSE(file.links);
        EXPECT_EQ(json::parse(NameStoreCodec::encode(file))["schemaVersion"], 2);
    }
}

TEST(NameStoreCodec, TellsAnotherSchema) {
    const auto failure = [](const std::string& text) -> std::string {
        try {
            NameStoreCodec::decode(text, now);
            return {};
        } catch (const NameStoreError& error) {
            EXPECT_EQ(error.which(), NameStoreError::Case::unsupportedSchema);
            return error.sentence();
        }
    };
    EXPECT_EQ(failure(R"({"schemaVersion": 3})"),
              "desktops.json uses schema 3, which this version cannot read.");
    EXPECT_EQ(failure(R"({"schemaVersion": -7})"), NameStoreError::unsupportedSchema(-7).sentence());
    for (const char* root : {"[]", "null", "\"x\"", "2"})
        EXPECT_EQ(failure(root), NameStoreError::unsupportedSchema(-1).sentence()) << root;
}

TEST(NameStoreCodec, EachMemberOfAnotherTypeIsDamage) {
    const json full = json::parse(fullFile);
    const json odd = json::parse(R"({"n": null, "b": true, "1": 1, "m": -1, "f": 2.9, "e": 1e300,
        "l": 4294967298, "t": "x", "a": [], "A": [1], "o": {}, "O": {"a": 1}})");
    const std::string record = "/desktops/1D2C3B4A-0000-4000-8000-000000000001";
    // Which of these values each member may have, and '-' where it may be missing; any other is damage.
    const std::vector<std::pair<std::string, std::string>> members = {
        {"/desktops", "o"},
        {"/links", "no-"},
        {"/links/AB12CD34", "o-"},
        {"/links/AB12CD34/8A1F27C4", "t-"},
        {"/order", "no-"},
        {"/order/37D8832A", "a-"},
        {"/order/37D8832A/0", "t-"},
        {"/updatedAt", ""},
        {record, "-"},
        {record + "/name", "t"},
        {record + "/aliases", "na-"},
        {record + "/aliases/0", "t-"},
        {record + "/icon", "nt-"},
        {record + "/color", "nt-"},
        {record + "/isDimmed", "nb-"},
        {record + "/createdAt", "n-"},
        {record + "/lastSeen", "n-"},
        {record + "/lastSeen/displayUUID", "t"},
        {record + "/lastSeen/displayName", "nt-"},
        {record + "/lastSeen/indexOnDisplay", "1m"},
        {record + "/lastSeen/spaceCount", "1mn-"},
        {record + "/lastSeen/at", ""},
    };
    for (const auto& [path, allowed] : members) {
        const auto isAllowed = [&](const std::string& letter) {
            return allowed.find(letter) != std::string::npos;
        };
        const json::json_pointer pointer(path);
        for (const auto& [letter, value] : odd.items()) {
            json file = full;
            file.at(pointer) = value;
            EXPECT_EQ(!isDamaged(file.dump()), isAllowed(letter)) << path << " = " << value;
        }
        const json missing = json::array({{{"op", "remove"}, {"path", path}}});
        EXPECT_EQ(!isDamaged(full.patch(missing).dump()), isAllowed("-")) << "without " << path;
    }
}

TEST(NameStoreCodec, DamagedTextsAreRefused) {
    const std::string good = R"({"desktops":{},"schemaVersion":2,"updatedAt":"2026-01-05T09:00:00Z"})";
    ASSERT_FALSE(isDamaged(good));
    const auto withDesktops = [](const std::string& desktops) {
        return R"({"desktops":)" + desktops + R"(,"updatedAt":"2026-01-05T09:00:00Z"})";
    };
    EXPECT_TRUE(isDamaged(withDesktops("{\"U\":{\"name\":\"\xC3\x28\"}}")));
    EXPECT_TRUE(isDamaged(withDesktops(R"({"U":{"name":"\uD83D"}})"))); // half a surrogate pair
    EXPECT_TRUE(isDamaged(withDesktops(R"({"U":{"name":"a","x":1e999}})")));
    EXPECT_TRUE(isDamaged(withDesktops(R"({"U":{"name":"a","x":)" + std::string(50'000, '[') +
                                       std::string(50'000, ']') + "}}")));
    // The offset carries the moment out of the four-digit years, so it couldn't be written back.
    EXPECT_TRUE(isDamaged(withDesktops(R"({"U":{"name":"a","createdAt":"9999-12-31T23:59:59-01:00"}})")));
    EXPECT_TRUE(isDamaged(withDesktops(R"({"U":{"name":"a","createdAt":"0000-01-01T00:00:00+01:00"}})")));
    EXPECT_FALSE(isDamaged("\xEF\xBB\xBF" + good)); // a byte order mark
}

TEST(NameStoreCodec, BadBytesInMemoryCannotSpoilTheFile) {
    NameStoreFile file;
    for (const char* key : {"fullscreen:\xE9", "fullscreen:\xE8"}) file.desktops[key].name = "caf\xE9";
    file.order.emplace()["\xFF"] = {"fullscreen:\xE9"};
    const NameStoreFile back = NameStoreCodec::decode(NameStoreCodec::encode(file), now);
    EXPECT_EQ(back.desktops.at("fullscreen:\uFFFD").name, "caf\uFFFD");
}

TEST(NameStoreFile, RekeyMovesTheRecordAndItsPlaceInTheOrder) {
    NameStoreFile file;
    file.desktops["old"].name = "Mail";
    file.desktops["other"].name = "Web";
    file.setOrder("Aa", {"x", "old", "y"});
    file.rekey("old", "new", "aA");
    EXPECT_EQ(file.record("old"), nullptr);
    EXPECT_EQ(file.record("new")->name, "Mail");
    EXPECT_EQ(*file.orderOf("AA"), (std::vector<std::string>{"x", "new", "y"}));
    EXPECT_EQ(file.order->size(), 1u);

    NameStoreFile before = file;
    file.rekey("gone", "fresh", "Aa");
    file.rekey("new", "other", "Aa"); // would lose "Web"
    EXPECT_EQ(file, before);
}

} // namespace
} // namespace lumnara
