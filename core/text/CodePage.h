#pragma once

#include <memory>
#include <string>
#include <string_view>

struct UConverter;

namespace lumnara::text {

/// Reads bytes of a code page, known by its number: 1252, 932, 437, 10000 (Macintosh), 65001 (UTF-8) and so
/// on. One thread at a time.
class CodePage {
public:
    static constexpr int westernEuropean = 1252;

    /// An unknown number is read as westernEuropean.
    explicit CodePage(int number);

    /// The bytes as UTF-8; U+FFFD for those that mean nothing. No state is kept between calls.
    std::string decode(std::string_view bytes);

private:
    struct Close {
        void operator()(UConverter* converter) const;
    };
    std::unique_ptr<UConverter, Close> converter_;
};

} // namespace lumnara::text
