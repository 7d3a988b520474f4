#include "core/base/Uuid.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <fmt/core.h>
#include <sys/random.h>
#include <system_error>

namespace lumnara {

std::string newUuid() {
    std::array<std::uint8_t, 16> bytes{};
    if (::getentropy(bytes.data(), bytes.size()) != 0)
        throw std::system_error(errno, std::generic_category(), "getentropy");
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0F) | 0x40); // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80); // the variant of RFC 4122

    std::string text;
    text.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += fmt::format("{:02X}", bytes[i]);
    }
    return text;
}

} // namespace lumnara
