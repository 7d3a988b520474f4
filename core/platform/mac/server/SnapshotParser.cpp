#include "core/platform/mac/server/SnapshotParser.h"

#include "core/base/Files.h"
#include "core/model/SpaceKitError.h"

#include <fmt/core.h>
#include <unordered_set>

namespace lumnara {

namespace {

std::optional<std::uint64_t> idOf(const PropertyDictionary& space) {
    for (const char* name : {"id64", "ManagedSpaceID"})
        if (const PropertyValue* value = space.find(name))
            if (const auto id = value->unsignedInteger()) return id;
    return std::nullopt;
}

std::optional<std::int64_t> integerMember(const PropertyDictionary& space, std::string_view name) {
    const PropertyValue* value = space.find(name);
    return value ? value->signedInteger() : std::nullopt;
}

/// The value as a list of dictionaries, or nothing when it or an element is of another type.
std::optional<std::vector<const PropertyDictionary*>> dictionariesOf(const PropertyValue* value) {
    const PropertyArray* array = value ? value->array() : nullptr;
    if (!array) return std::nullopt;
    std::vector<const PropertyDictionary*> dictionaries;
    dictionaries.reserve(array->size());
    for (const PropertyValue& element : *array) {
        if (!element.dictionary()) return std::nullopt;
        dictionaries.push_back(element.dictionary());
    }
    return dictionaries;
}

Space parseSpace(const PropertyDictionary& source, std::size_t index, const std::string& displayUuid) {
    const auto id = idOf(source);
    if (!id) throw SpaceKitError::malformed(fmt::format("space {} on {} has no id64", index, displayUuid));
    const PropertyValue* uuid = source.find("uuid");

    Space space;
    space.id = {*id};
    if (uuid && uuid->text()) space.uuid = *uuid->text();
    space.kind = spaceKindOf(integerMember(source, "type"));
    space.indexOnDisplay = static_cast<int>(index);
    space.managedID = integerMember(source, "ManagedSpaceID");
    return space;
}

DisplaySpaces parseDisplay(const PropertyDictionary& source, std::size_t index) {
    const PropertyValue* identifier = source.find("Display Identifier");
    if (!identifier || !identifier->text())
        throw SpaceKitError::malformed(fmt::format("display {} has no Display Identifier", index));

    DisplaySpaces display;
    display.display.uuid = *identifier->text();
    const std::string& uuid = display.display.uuid;
    const auto spaces = dictionariesOf(source.find("Spaces"));
    if (!spaces) throw SpaceKitError::malformed(fmt::format("display {} has no Spaces array", uuid));

    std::unordered_set<std::uint64_t> ids;
    display.spaces.reserve(spaces->size());
    for (std::size_t i = 0; i < spaces->size(); ++i) {
        display.spaces.push_back(parseSpace(*(*spaces)[i], i, uuid));
        ids.insert(display.spaces.back().id.raw);
    }

    const PropertyValue* current = source.find("Current Space");
    const auto currentID = current && current->dictionary() ? idOf(*current->dictionary()) : std::nullopt;
    if (!currentID || !ids.contains(*currentID))
        throw SpaceKitError::malformed(
            fmt::format("display {} current Space missing or not in its list", uuid));
    display.currentID = {*currentID};
    return display;
}

} // namespace

SpaceSnapshot SnapshotParser::parse(const PropertyList& displays, Date takenAt) {
    if (displays.empty()) throw SpaceKitError::malformed("no displays");
    SpaceSnapshot snapshot;
    snapshot.takenAt = takenAt;
    snapshot.displays.reserve(displays.size());
    for (std::size_t i = 0; i < displays.size(); ++i)
        snapshot.displays.push_back(parseDisplay(displays[i], i));
    return snapshot;
}

SpaceSnapshot SnapshotParser::parse(std::string_view json, Date takenAt) {
    PropertyValue root = propertyValueFromJson(json);
    PropertyList displays;
    PropertyArray* array = root.array();
    if (!array) throw SpaceKitError::malformed("fixture root is not an array");
    for (PropertyValue& element : *array) {
        if (!element.dictionary()) throw SpaceKitError::malformed("fixture root is not an array");
        displays.push_back(std::move(*element.dictionary()));
    }
    return parse(displays, takenAt);
}

SnapshotSpaceProvider providerOfFixture(const std::filesystem::path& fixture, Date takenAt) {
    return SnapshotSpaceProvider(SnapshotParser::parse(readFile(fixture), takenAt));
}

} // namespace lumnara
