#include "core/platform/mac/server/SnapshotParser.h"
#include "core/base/Files.h"
#include "core/base/StrictJson.h"
#include "core/model/SnapshotSpaceProvider.h"
#include "core/model/SpaceKitError.h"
#include "core/platform/mac/server/PropertyList.h"
#include "tests/mac/LayoutFixture.h"
#include "tests/support/TemporaryFolder.h"

#include <fmt/core.h>
#include <gtest/gtest.h>
#include <limits>
#include <system_error>

namespace lumnara {
namespace {

using testing::LayoutFixture;

PropertyList displaysOf(const std::string& fixture) {
    PropertyList displays;
    PropertyValue root = propertyValueFromJson(readFile(LayoutFixture(fixture).path));
    for (PropertyValue& element : *root.array()) displays.push_back(*element.dictionary());
    return displays;
}

/// The detail of the refusal; empty when the list is read.
std::string refusal(const PropertyList& displays) {
    try {
        SnapshotParser::parse(displays, Date{});
        return {};
    } catch (const SpaceKitError& error) {
        EXPECT_EQ(error.which(), SpaceKitError::Case::malformed);
        EXPECT_EQ(error.sentence(), "Unexpected desktop data from macOS: " + error.detail() + ".");
        return error.detail();
    }
}

TEST(SnapshotParser, ReadsTheRecordedLayouts) {
    for (const std::string name : testing::layoutFixtures) {
        SCOPED_TRACE(name);
        const LayoutFixture fixture(name);
        const SpaceSnapshot snapshot = fixture.snapshot();
        EXPECT_EQ(snapshot.isSharedMain(), fixture.expected["isSharedMain"].get<bool>());

        auto actual = nlohmann::json::array();
        for (const DisplaySpaces& display : snapshot.displays) {
            auto spaces = nlohmann::json::array();
            for (const Space& space : display.spaces) {
                EXPECT_EQ(space.indexOnDisplay, static_cast<int>(spaces.size()));
                const auto key = snapshot.key(space, display.display.uuid);
                spaces.push_back({{"key", key ? nlohmann::json(*key) : nlohmann::json()},
                                  {"kind", static_cast<int>(space.kind)}});
            }
            actual.push_back(
                {{"uuid", display.display.uuid}, {"current", display.currentID.raw}, {"spaces", spaces}});
        }
        nlohmann::json expected = fixture.expected["displays"];
        for (auto& display : expected) {
            display.erase("name");
            for (auto& space : display["spaces"]) space.erase("name");
        }
        EXPECT_EQ(actual, expected);
    }
}

/// A value as some window system might hand it over, and the numbers that it stands for.
struct LooseNumber {
    PropertyValue value;
    std::optional<std::uint64_t> asUnsigned;
    std::optional<std::int64_t> asSigned;
};

std::vector<LooseNumber> looseNumbers() {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    constexpr auto largestSigned = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    const std::nullopt_t none = std::nullopt;
    return {
        {PropertyValue(), none, none},
        {true, none, none},
        {0, 0, 0},
        {-1, none, -1},
        {smallest, none, smallest},
        {largest, largest, none},
        {4.0, 4, 4},
        {-4.0, none, -4},
        {2.9, none, none},
        {18446744073709551616.0, none, none},
        {9223372036854775808.0, 9223372036854775808u, none},
        {-9223372036854775808.0, none, smallest},
        {std::numeric_limits<double>::quiet_NaN(), none, none},
        {std::numeric_limits<double>::infinity(), none, none},
        {"", none, none},
        {"+", none, none},
        {"-", none, none},
        {"+-1", none, none},
        {" 7", none, none},
        {"7 ", none, none},
        {"0x7", none, none},
        {"7.0", none, none},
        {"７", none, none},
        {std::string("7\0", 2), none, none},
        {"007", 7, 7},
        {"+7", 7, 7},
        {"-7", none, -7},
        {"-0", 0, 0},
        {"18446744073709551615", largest, none},
        {"18446744073709551616", none, none},
        {"9223372036854775807", largestSigned, largestSigned},
        {"-9223372036854775808", none, smallest},
        {"-9223372036854775809", none, none},
        {PropertyArray{}, none, none},
        {PropertyDictionary{{"id64", 4711}}, none, none},
    };
}

TEST(PropertyValue, ReadsNumbersFromLooselyTypedValues) {
    const auto numbers = looseNumbers();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        SCOPED_TRACE(fmt::format("value {}", i));
        EXPECT_EQ(numbers[i].value.unsignedInteger(), numbers[i].asUnsigned);
        EXPECT_EQ(numbers[i].value.signedInteger(), numbers[i].asSigned);
    }
}

/// Every field of every display and Space of a recorded layout, in turn missing and of every wrong type.
class MutatedLayout : public ::testing::Test {
protected:
    static PropertyArray& spacesOf(PropertyDictionary& display) { return *display.find("Spaces")->array(); }

    /// Calls `check` with each display's index, for each odd value and for none.
    template <class Check> void forEachMutation(Check check) {
        for (std::size_t display = 0; display < original_.size(); ++display) {
            check(display, nullptr, LooseNumber{});
            for (const LooseNumber& odd : values_) check(display, &odd.value, odd);
        }
    }
    static void mutate(PropertyDictionary& dictionary, std::string_view key, const PropertyValue* value) {
        if (value)
            dictionary.set(key, *value);
        else
            dictionary.erase(key);
    }

    const PropertyList original_ = displaysOf("three-displays");
    const std::vector<LooseNumber> values_ = looseNumbers();
};

TEST_F(MutatedLayout, RefusesADisplayWithoutItsFields) {
    forEachMutation([&](std::size_t i, const PropertyValue* value, const LooseNumber&) {
        PropertyList displays = original_;
        mutate(displays[i], "Display Identifier", value);
        const bool isText = value && value->text();
        EXPECT_EQ(refusal(displays), isText ? "" : fmt::format("display {} has no Display Identifier", i));

        displays = original_;
        const std::string uuid = *displays[i].find("Display Identifier")->text();
        const std::string lostCurrent = "display " + uuid + " current Space missing or not in its list";
        mutate(displays[i], "Spaces", value);
        const bool isEmptyList = value && value->array();
        EXPECT_EQ(refusal(displays), isEmptyList ? lostCurrent : "display " + uuid + " has no Spaces array");

        displays = original_;
        mutate(displays[i], "Current Space", value);
        EXPECT_EQ(refusal(displays),
                  lostCurrent); // the odd dictionary names a Space of no display here but one
    });
}

TEST_F(MutatedLayout, ReadsOrRefusesEachFieldOfASpace) {
    forEachMutation([&](std::size_t i, const PropertyValue* value, const LooseNumber& odd) {
        const std::string uuid = *original_[i].find("Display Identifier")->text();
        const SpaceSnapshot whole = SnapshotParser::parse(original_, Date{});
        for (std::size_t place = 0; place < whole.displays[i].spaces.size(); ++place) {
            const Space& before = whole.displays[i].spaces[place];
            const auto parsed = [&](std::string_view key) {
                PropertyList displays = original_;
                mutate(*spacesOf(displays[i])[place].dictionary(), key, value);
                return SnapshotParser::parse(displays, Date{}).displays[i].spaces[place];
            };
            EXPECT_EQ(parsed("type").kind, spaceKindOf(odd.asSigned));
            EXPECT_EQ(parsed("ManagedSpaceID").managedID, odd.asSigned);
            EXPECT_EQ(parsed("ManagedSpaceID").id, before.id);
            EXPECT_EQ(parsed("uuid").uuid, value && value->text() ? *value->text() : "");

            PropertyList displays = original_;
            PropertyDictionary& space = *spacesOf(displays[i])[place].dictionary();
            mutate(space, "id64", value);
            const std::uint64_t id = odd.asUnsigned.value_or(static_cast<std::uint64_t>(*before.managedID));
            if (before.id == whole.displays[i].currentID && id != before.id.raw)
                EXPECT_EQ(refusal(displays), "display " + uuid + " current Space missing or not in its list");
            else
                EXPECT_EQ(SnapshotParser::parse(displays, Date{}).displays[i].spaces[place].id.raw, id);

            space.erase("ManagedSpaceID");
            const std::string noID = fmt::format("space {} on {} has no id64", place, uuid);
            EXPECT_EQ(refusal(displays) == noID, !odd.asUnsigned);

            displays = original_;
            spacesOf(displays[i])[place] = PropertyValue(3);
            EXPECT_EQ(refusal(displays), "display " + uuid + " has no Spaces array");
        }
    });
}

TEST(SnapshotParser, RefusesWhatIsNoListOfDisplays) {
    EXPECT_EQ(refusal({}), "no displays");
    const auto detail = [](std::string_view json) {
        try {
            SnapshotParser::parse(json, Date{});
            return std::string();
        } catch (const SpaceKitError& error) {
            return error.detail();
        }
    };
    EXPECT_EQ(detail("[]"), "no displays");
    for (const char* root : {"{}", "null", "7", "[7]", "[{}, []]"})
        EXPECT_EQ(detail(root), "fixture root is not an array") << root;
    EXPECT_EQ(detail("[{}]"), "display 0 has no Display Identifier");
}

TEST(SnapshotParser, PassesErrorsOfJsonAndFilesThrough) {
    EXPECT_THROW(SnapshotParser::parse("[{", Date{}), nlohmann::json::parse_error);
    EXPECT_THROW(SnapshotParser::parse("[{\"a\": 1, \"a\": 2}]", Date{}), JsonError);
    EXPECT_THROW(SnapshotParser::parse(std::string(100'000, '['), Date{}), JsonError);
    const testing::TemporaryFolder folder;
    EXPECT_THROW(providerOfFixture(folder / "absent.json", Date{}), std::system_error);
}

TEST(SnapshotSpaceProvider, DefaultsToTheFirstDisplay) {
    auto provider = providerOfFixture(LayoutFixture("three-displays").path, Date{5});
    EXPECT_EQ(provider.snapshot().takenAt, Date{5});
    EXPECT_EQ(provider.menuBarDisplay(), provider.current.displays[0].display);
    EXPECT_EQ(provider.cursorDisplay(), provider.current.displays[0].display);

    const DisplayID second = provider.current.displays[1].display;
    SnapshotSpaceProvider told(provider.current, second, {}, {{second.uuid, "Left"}});
    EXPECT_EQ(told.menuBarDisplay(), second);
    EXPECT_EQ(told.cursorDisplay(), provider.current.displays[0].display);
    EXPECT_EQ(told.displayName(second.uuid), "Left");
    EXPECT_EQ(told.displayName("8a1f27c4-51d0-4b1b-9d3a-0c7e6a90f211"), std::nullopt);
    EXPECT_EQ(SnapshotSpaceProvider(SpaceSnapshot{}).menuBarDisplay(), std::nullopt);
}

} // namespace
} // namespace lumnara
