#include "core/platform/mac/server/PropertyList.h"

#include "core/base/DecimalText.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lumnara {

namespace {

template <class Integer> std::optional<Integer> wholeNumber(double value) {
    // The largest integers are no doubles: the next power of two is the first that is too large.
    const double end = std::ldexp(1.0, std::numeric_limits<Integer>::digits);
    const double start = std::is_signed_v<Integer> ? -end : 0.0;
    if (!(value >= start && value < end) || value != std::trunc(value)) return std::nullopt;
    return static_cast<Integer>(value);
}

template <class Integer> std::optional<Integer> integerOf(const PropertyValue::Storage& storage) {
    if (const auto* value = std::get_if<std::int64_t>(&storage))
        return std::in_range<Integer>(*value) ? std::optional(static_cast<Integer>(*value)) : std::nullopt;
    if (const auto* value = std::get_if<std::uint64_t>(&storage))
        return std::in_range<Integer>(*value) ? std::optional(static_cast<Integer>(*value)) : std::nullopt;
    if (const auto* value = std::get_if<double>(&storage)) return wholeNumber<Integer>(*value);
    if (const auto* value = std::get_if<std::string>(&storage)) return decimalIntegerOf<Integer>(*value);
    return std::nullopt;
}

} // namespace

PropertyDictionary::PropertyDictionary() noexcept = default;
PropertyDictionary::PropertyDictionary(std::initializer_list<PropertyMember> members) : members_(members) {}
PropertyDictionary::PropertyDictionary(const PropertyDictionary&) = default;
PropertyDictionary::PropertyDictionary(PropertyDictionary&&) noexcept = default;
PropertyDictionary& PropertyDictionary::operator=(const PropertyDictionary&) = default;
PropertyDictionary& PropertyDictionary::operator=(PropertyDictionary&&) noexcept = default;
PropertyDictionary::~PropertyDictionary() = default;

void PropertyDictionary::append(std::string key, PropertyValue value) {
    members_.push_back({std::move(key), std::move(value)});
}

void PropertyDictionary::set(std::string_view key, PropertyValue value) {
    if (PropertyValue* found = find(key))
        *found = std::move(value);
    else
        append(std::string(key), std::move(value));
}

bool PropertyDictionary::erase(std::string_view key) {
    return std::erase_if(members_, [&](const PropertyMember& member) { return member.key == key; }) > 0;
}

const PropertyValue* PropertyDictionary::find(std::string_view key) const {
    for (const PropertyMember& member : members_)
        if (member.key == key) return &member.value;
    return nullptr;
}

PropertyValue* PropertyDictionary::find(std::string_view key) {
    return const_cast<PropertyValue*>(std::as_const(*this).find(key));
}

bool PropertyDictionary::operator==(const PropertyDictionary&) const = default;

std::optional<std::uint64_t> PropertyValue::unsignedInteger() const {
    return integerOf<std::uint64_t>(storage_);
}
std::optional<std::int64_t> PropertyValue::signedInteger() const { return integerOf<std::int64_t>(storage_); }

bool PropertyValue::operator==(const PropertyValue&) const = default;

} // namespace lumnara
