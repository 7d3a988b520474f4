#pragma once

#include "core/async/Signal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace lumnara {

/// A stored value that is bytes and no text.
struct DefaultsData {
    std::string bytes;
    bool operator==(const DefaultsData&) const = default;
};

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, DefaultsData>;

/// The user's settings: values under text keys that outlast the program. Owned by whoever chose the
/// platform, and outlives what reads it. Main thread.
class DefaultsStore {
public:
    virtual ~DefaultsStore() = default;

    /// Nothing when the key is absent, or when what stands there is no DefaultsValue.
    virtual std::optional<DefaultsValue> value(std::string_view key) const = 0;

    /// Holds at once for value(); the store says when it is durable. A double that isn't finite is as good
    /// as none: it removes the key.
    virtual void set(std::string_view key, DefaultsValue value) = 0;
    virtual void remove(std::string_view key) = 0;

    /// The value as a T; nothing when it is absent or of another type. A whole number is a double too.
    template <class T> std::optional<T> get(std::string_view key) const {
        const auto found = value(key);
        if (!found) return std::nullopt;
        if constexpr (std::is_same_v<T, double>)
            if (const auto* whole = std::get_if<std::int64_t>(&*found)) return static_cast<double>(*whole);
        const T* wanted = std::get_if<T>(&*found);
        return wanted ? std::optional<T>(*wanted) : std::nullopt;
    }

    /// A key whose value somebody else set or removed, such as another program. value() gives the new one.
    async::Signal<const std::string&> changedElsewhere;
};

} // namespace lumnara
