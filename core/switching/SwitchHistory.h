#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// The desktops that each display showed last, by their stable keys, so that "back" can return. Going back
/// is recorded like any switch and takes nothing off: back and back again toggles between two desktops.
struct SwitchHistory {
    /// Keys kept per display; none when it isn't positive.
    int capacity = 10;
    /// Display uuid to keys, oldest first.
    std::map<std::string, std::vector<std::string>> perDisplay;

    bool operator==(const SwitchHistory&) const = default;

    /// A key that stands last already is not repeated.
    void record(const std::string& key, const std::string& display);
    /// The entry before the last.
    std::optional<std::string> previous(const std::string& display) const;
    std::optional<std::string> current(const std::string& display) const;
    std::vector<std::string> entries(const std::string& display) const;
    void clear(const std::string& display);

    /// An object of "capacity" and "perDisplay".
    std::string toJson() const;
    /// Throws an error of the JSON library, or JsonError for a field that is missing or of another type.
    static SwitchHistory fromJson(std::string_view json);
};

} // namespace lumnara
