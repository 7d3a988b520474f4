#pragma once

#include <string>

namespace lumnara::testing {

/// The base block of a monitor's EDID: maker "DEL", product code 0xA0B1, serial number 305419896, and no
/// descriptors.
inline std::string edidBlock() {
    std::string bytes(128, '\0');
    bytes.replace(0, 8, std::string("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8));
    const int maker = ('D' - '@') << 10 | ('E' - '@') << 5 | ('L' - '@');
    bytes[8] = static_cast<char>(maker >> 8);
    bytes[9] = static_cast<char>(maker & 0xFF);
    return bytes.replace(10, 6, "\xB1\xA0\x78\x56\x34\x12", 6);
}

/// The block with a display descriptor of this tag (0xFC name, 0xFF serial number) at one of 54, 72, 90, 108.
inline std::string withDescriptor(std::string bytes, std::size_t at, char tag, std::string text) {
    text.resize(13, ' ');
    bytes.replace(at, 5, std::string{0, 0, 0, tag, 0});
    return bytes.replace(at + 5, 13, text);
}

} // namespace lumnara::testing
