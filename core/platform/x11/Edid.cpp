#include "core/platform/x11/Edid.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>

namespace lumnara {

namespace {

constexpr std::size_t blockSize = 128;
constexpr std::string_view header{"\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8};
constexpr std::array<std::size_t, 4> descriptors{54, 72, 90, 108};
constexpr std::uint8_t nameTag = 0xFC;
constexpr std::uint8_t serialTag = 0xFF;
/// What some makers write in every monitor.
constexpr std::uint32_t placeholderSerial = 0x01010101;

std::uint8_t byteAt(std::string_view block, std::size_t at) { return static_cast<std::uint8_t>(block[at]); }

/// The text of the first display descriptor of this tag: up to 13 characters, ended by a line feed, padded
/// with blanks. Characters outside of printable ASCII are dropped.
std::string descriptorText(std::string_view block, std::uint8_t tag) {
    for (const auto at : descriptors) {
        const bool isDisplayDescriptor = byteAt(block, at) == 0 && byteAt(block, at + 1) == 0;
        if (!isDisplayDescriptor || byteAt(block, at + 3) != tag) continue;
        std::string text;
        for (const char c : block.substr(at + 5, 13)) {
            if (c == '\n') break;
            if (c >= ' ' && c <= '~') text += c;
        }
        text.erase(text.find_last_not_of(' ') + 1);
        text.erase(0, text.find_first_not_of(' '));
        return text;
    }
    return {};
}

std::string makerOf(std::string_view block) {
    const unsigned packed = byteAt(block, 8) << 8U | byteAt(block, 9);
    std::string maker;
    for (const unsigned shift : {10U, 5U, 0U}) maker += static_cast<char>('@' + (packed >> shift & 0x1FU));
    return maker;
}

} // namespace

std::string Edid::model() const { return name.empty() ? fmt::format("0x{:04X}", product) : name; }

std::optional<Edid> parseEdid(std::string_view block) {
    if (block.size() < blockSize || !block.starts_with(header)) return std::nullopt;
    Edid edid;
    edid.maker = makerOf(block);
    edid.product = static_cast<std::uint16_t>(byteAt(block, 11) << 8U | byteAt(block, 10));
    edid.name = descriptorText(block, nameTag);
    std::uint32_t number = 0;
    for (const std::size_t at : {15U, 14U, 13U, 12U}) number = number << 8U | byteAt(block, at);
    if (auto text = descriptorText(block, serialTag); !text.empty())
        edid.serial = std::move(text);
    else if (number != 0 && number != placeholderSerial)
        edid.serial = std::to_string(number);
    return edid;
}

std::vector<std::string> monitorIdentities(const std::vector<ConnectedMonitor>& monitors) {
    std::vector<std::string> identities;
    for (const auto& [connector, edid] : monitors) {
        if (!edid) {
            identities.push_back(connector);
            continue;
        }
        std::string identity = edid->maker + " " + edid->model();
        if (edid->serial) identity += " " + *edid->serial;
        const auto alike = std::count_if(monitors.begin(), monitors.end(),
                                         [&edid = edid](const auto& other) { return other.edid == edid; });
        if (!edid->serial || alike > 1) identity += " " + connector;
        identities.push_back(std::move(identity));
    }
    return identities;
}

} // namespace lumnara
