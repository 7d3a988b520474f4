#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace lumnara {

/// What is wrong with a text that is JSON, but not what was expected.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads JSON without converting. The library makes 2 of 2.9 and 1 of true, and of a key that stands twice
/// it loses the first value in silence; these readers throw JsonError.
class StrictJson {
public:
    using Value = nlohmann::json;

    /// Throws the library's error for bad JSON or bad UTF-8, and JsonError for a key that stands twice in
    /// one object or for nesting so deep that writing it again could run out of stack.
    static Value parse(std::string_view text);
    /// The same, but of a key that stands twice the last value counts, and `onDoubledKey` is told of it.
    static Value parse(std::string_view text, const std::function<void(const std::string&)>& onDoubledKey);

    /// The member of an object, or null when it is missing or its value is null.
    static const Value* find(const Value& object, const char* name);
    static const Value& member(const Value& object, const char* name);

    // The value as that very type.
    static const Value& object(const Value& value);
    static const Value& array(const Value& value);
    static const std::string& text(const Value& value);
    static bool boolean(const Value& value);
    static std::uint64_t unsignedInteger(const Value& value);
    /// Any number, whole or not.
    static double number(const Value& value);
    template <class Integer = std::int64_t> static Integer integer(const Value& value) {
        const std::int64_t wide = signedInteger(value);
        if (!std::in_range<Integer>(wide)) throw JsonError("a number is out of range");
        return static_cast<Integer>(wide);
    }

private:
    static std::int64_t signedInteger(const Value& value);
};

} // namespace lumnara
