#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

struct TextColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const TextColor&) const = default;
};

/// How characters look. The default is the editor's own font, size and colour.
struct TextStyle {
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;
    /// Twice the size in points, as rich text counts sizes; 0 for the editor's own.
    int halfPoints = 0;
    std::optional<TextColor> color{};
    /// A font family; empty for the editor's own.
    std::string family{};
    /// The address that a click opens; empty for none.
    std::string link{};

    bool operator==(const TextStyle&) const = default;
};

/// A picture, or another file, at its place in a text.
struct TextAttachment {
    /// The file's name: a key of RichText::attachments. The file may be missing there.
    std::string name;
    /// The size in points at which it is shown; 0 for the picture's own.
    double width = 0;
    double height = 0;

    bool operator==(const TextAttachment&) const = default;
};

/// A stretch of one style: text, or one attachment and no text. UTF-8. Of line ends a text holds only
/// U+2028, which breaks a line inside its paragraph, and of other control characters only the tab.
struct TextRun {
    std::string text;
    TextStyle style;
    std::optional<TextAttachment> attachment;

    bool operator==(const TextRun&) const = default;
};

enum class TextAlignment {
    left, ///< or the side at which the text's script begins
    center,
    right,
    justified,
};

/// A paragraph's place in a list. Neighbours form one list: numbers count on from paragraph to paragraph
/// of a level and begin at 1 behind a shallower one, another kind or a paragraph that is in no list.
struct ListItem {
    enum class Kind { bulleted, numbered };
    static constexpr int deepestLevel = 8;

    Kind kind = Kind::bulleted;
    int level = 0; ///< 0 to deepestLevel

    bool operator==(const ListItem&) const = default;
};

struct TextParagraph {
    /// Neighbours differ in style, unless one is an attachment; none is without text and attachment.
    std::vector<TextRun> runs;
    TextAlignment alignment = TextAlignment::left;
    std::optional<ListItem> list;

    bool operator==(const TextParagraph&) const = default;

    /// Adds at the end; joins the last run when the style is the same. An empty text adds nothing.
    void append(std::string_view text, const TextStyle& style);
    void append(TextAttachment attachment, const TextStyle& style);
};

/// A note's body: what an editor of notes offers and its file keeps.
struct RichText {
    /// A line of the text each, the last one too: "a" and an empty line are two.
    std::vector<TextParagraph> paragraphs;
    /// The attached files' bytes by name. A name is one that attachmentName() would return.
    std::map<std::string, std::string> attachments;

    bool operator==(const RichText&) const = default;

    /// Unstyled text, a paragraph for each of its lines.
    static RichText plain(std::string_view text);

    /// The text alone, paragraphs divided by "\n", attachments as U+FFFC.
    std::string plainText() const;
    /// Whether there is nothing to see: no character and no attachment.
    bool empty() const;

    /// Adds a file and returns its name here: `name` made safe, with a number where another file has it
    /// ("picture 2.png"). The same bytes under the same name are kept once.
    std::string addAttachment(std::string_view name, std::string bytes);

    /// A name that a package can hold: its last path component without control characters and blanks at
    /// the ends, of at most 200 bytes; "attachment" where nothing of use is left or the name is that of
    /// the package's own text.
    static std::string attachmentName(std::string_view name);
};

} // namespace lumnara
