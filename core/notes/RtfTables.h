#pragma once

#include "core/notes/RichText.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumnara {

/// The fonts of a document by number. A font is begun by its number and ended by a semicolon.
class RtfFonts {
public:
    void begin(int number);
    /// The code page of a font, by itself or by its number as a Windows character set.
    void setCodePage(int codePage);
    void setCharacterSet(int set);
    void addToName(std::string_view text);
    void end();

    /// Empty for an unknown font, and for one whose name is longer than any font's.
    const std::string& family(int number) const;
    /// Of the font being read, or of a finished one.
    std::optional<int> codePage() const { return current_.codePage; }
    std::optional<int> codePage(int number) const;

private:
    struct Font {
        std::string family;
        std::optional<int> codePage;
    };
    std::unordered_map<int, Font> fonts_;
    Font current_;
    std::optional<int> number_;
};

/// The colours of a document by number; an entry without any part is the editor's own colour.
class RtfColors {
public:
    void setPart(std::uint8_t TextColor::* part, int value);
    void end();
    std::optional<TextColor> color(int number) const;

private:
    std::vector<std::optional<TextColor>> colors_;
    std::optional<TextColor> current_;
};

/// The lists of a document, and the numbers by which paragraphs refer to them.
class RtfLists {
public:
    void beginList();
    void beginLevel() { ++level_; }
    /// How the level being read counts, as \levelnfc has it: 23 for bullets, 255 for nothing at all.
    void setFormat(int format);
    void endList(int id);
    void beginOverride(int listId) { overridden_ = listId; }
    void endOverride(int number);

    /// What the tables say of a level of a list; nothing when they don't know it.
    std::optional<int> format(int number, int level) const;

    static constexpr int bullets = 23;
    static constexpr int noMark = 255;

private:
    using Formats = std::array<int, ListItem::deepestLevel + 1>;
    std::unordered_map<int, Formats> lists_;
    std::unordered_map<int, int> overrides_;
    Formats current_{};
    int level_ = -1;
    int overridden_ = 0;
};

} // namespace lumnara
