#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// What a monitor tells of itself in the base block of its EDID (VESA E-EDID 1.4, section 3).
struct Edid {
    /// The maker's three-letter PNP id, "DEL".
    std::string maker;
    std::uint16_t product = 0;
    /// The model's name; empty where the monitor tells none.
    std::string name;
    /// The text serial number, else the numeric one; nothing where the maker left it out.
    std::optional<std::string> serial;

    bool operator==(const Edid&) const = default;
    /// The name, else the product code as "0xA0B1".
    std::string model() const;
};

/// Nothing for a block that is too short or has no EDID header.
std::optional<Edid> parseEdid(std::string_view block);

/// A monitor at its connector ("DP-1"), before it has an identity.
struct ConnectedMonitor {
    std::string connector;
    std::optional<Edid> edid;
};

/// The identities of the monitors, parallel and distinct: "<maker> <model> <serial>", which follows a monitor
/// from one connector to another. One that has no serial number, or shares it with its twin, is told apart
/// by the connector behind it; one without an EDID is known by the connector alone.
std::vector<std::string> monitorIdentities(const std::vector<ConnectedMonitor>& monitors);

} // namespace lumnara
