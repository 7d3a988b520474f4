#pragma once

#include "core/seams/DefaultsStore.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace lumnara::testing {

/// Settings in memory, which a test may look into and change as another program would.
class MemoryDefaultsStore : public DefaultsStore {
public:
    std::map<std::string, DefaultsValue, std::less<>> values;
    int writes = 0; ///< calls of set and remove

    std::optional<DefaultsValue> value(std::string_view key) const override {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }
    void set(std::string_view key, DefaultsValue value) override {
        ++writes;
        values.insert_or_assign(std::string(key), std::move(value));
    }
    void remove(std::string_view key) override {
        ++writes;
        values.erase(std::string(key));
    }

    void changeFromElsewhere(const std::string& key, std::optional<DefaultsValue> value) {
        if (value)
            values.insert_or_assign(key, *std::move(value));
        else
            values.erase(key);
        changedElsewhere.emit(key);
    }
};

} // namespace lumnara::testing
