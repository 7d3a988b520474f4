#pragma once

#include "core/notes/RichText.h"
#include "core/notes/RtfTokens.h"
#include "core/notes/RtfWords.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

namespace lumnara {

/// What a group inherits and gives back at its end.
struct RtfGroup {
    RtfDestination destination = RtfDestination::body;
    int fallbackLength = 1;

    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;
    bool hidden = false;
    int halfPoints = 0;
    int font = -1;
    int color = 0;
    int link = -1; ///< among the reader's links

    TextAlignment alignment = TextAlignment::left;
    int list = 0;
    int level = 0;
    /// What the paragraph's mark looks like, where no table tells.
    std::optional<ListItem::Kind> mark;
};

/// A picture inside the text, as its digits and sizes come in.
struct RtfPicture {
    std::string bytes;
    std::optional<int> highDigit;
    int width = 0;
    int height = 0;
    int scaleX = 100;
    int scaleY = 100;

    void addDigit(char c) {
        const auto digit = hexDigit(c);
        if (!digit) return;
        if (highDigit) {
            bytes += static_cast<char>(*highDigit * 16 + *digit);
            highDigit.reset();
        } else {
            highDigit = digit;
        }
    }
    /// A side at a scale in percent, whatever a file claims.
    static int scaled(int side, int percent) {
        return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{side} * percent / 100, 0, 1'000'000));
    }
};

/// A file of the package. The sizes here and above are twentieths of a point.
struct RtfNamedFile {
    std::string name;
    int width = 0;
    int height = 0;
};

} // namespace lumnara
