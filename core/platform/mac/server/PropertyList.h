#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace lumnara {

struct PropertyMember;
class PropertyValue;

using PropertyArray = std::vector<PropertyValue>;

/// A few members in the order of their making; looked up one by one, which is quickest for so few.
class PropertyDictionary {
public:
    // Defined where PropertyMember is complete.
    PropertyDictionary() noexcept;
    PropertyDictionary(std::initializer_list<PropertyMember> members);
    PropertyDictionary(const PropertyDictionary&);
    PropertyDictionary(PropertyDictionary&&) noexcept;
    PropertyDictionary& operator=(const PropertyDictionary&);
    PropertyDictionary& operator=(PropertyDictionary&&) noexcept;
    ~PropertyDictionary();

    /// Adds a member whose key isn't there yet.
    void append(std::string key, PropertyValue value);
    /// Replaces the member of that key, or adds it.
    void set(std::string_view key, PropertyValue value);
    bool erase(std::string_view key);
    /// The value of that key, or null. Valid until the dictionary changes.
    const PropertyValue* find(std::string_view key) const;
    PropertyValue* find(std::string_view key);
    const std::vector<PropertyMember>& members() const { return members_; }

    bool operator==(const PropertyDictionary&) const;

private:
    std::vector<PropertyMember> members_;
};

/// A loosely typed value, as window systems and JSON files hand it over. Nothing is converted on the way
/// in; the readers below decide what passes as a text or a number.
class PropertyValue {
public:
    using Storage = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string,
                                 PropertyArray, PropertyDictionary>;

    PropertyValue() = default;
    PropertyValue(std::same_as<bool> auto value) : storage_(value) {}
    PropertyValue(std::signed_integral auto value) : storage_(static_cast<std::int64_t>(value)) {}
    template <std::unsigned_integral T>
        requires(!std::same_as<T, bool>)
    PropertyValue(T value) : storage_(static_cast<std::uint64_t>(value)) {}
    PropertyValue(double value) : storage_(value) {}
    PropertyValue(std::string value) : storage_(std::move(value)) {}
    PropertyValue(const char* value) : storage_(std::string(value)) {}
    PropertyValue(PropertyArray value) : storage_(std::move(value)) {}
    PropertyValue(PropertyDictionary value) : storage_(std::move(value)) {}

    /// The value as that very type, or null.
    const std::string* text() const { return std::get_if<std::string>(&storage_); }
    const PropertyArray* array() const { return std::get_if<PropertyArray>(&storage_); }
    PropertyArray* array() { return std::get_if<PropertyArray>(&storage_); }
    const PropertyDictionary* dictionary() const { return std::get_if<PropertyDictionary>(&storage_); }
    PropertyDictionary* dictionary() { return std::get_if<PropertyDictionary>(&storage_); }
    const Storage& storage() const { return storage_; }

    /// A number: an integer in range, a double that is a whole number in range, or a decimal text with an
    /// optional sign. Nothing for anything else; a boolean is not a number.
    std::optional<std::uint64_t> unsignedInteger() const;
    std::optional<std::int64_t> signedInteger() const;

    bool operator==(const PropertyValue&) const;

private:
    Storage storage_;
};

struct PropertyMember {
    std::string key;
    PropertyValue value;

    bool operator==(const PropertyMember&) const = default;
};

/// The window server's list of managed displays, one dictionary a display.
using PropertyList = std::vector<PropertyDictionary>;

/// Reads JSON text. Throws an error of the JSON library, or JsonError, for a text that is no sound JSON.
PropertyValue propertyValueFromJson(std::string_view json);

} // namespace lumnara
