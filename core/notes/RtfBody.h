#pragma once

#include "core/notes/RichText.h"

#include <string_view>

namespace lumnara {

/// Builds a rich text from what a reader finds, in order.
class RtfBody {
public:
    struct Look {
        TextAlignment alignment = TextAlignment::left;
        std::optional<ListItem> list;
    };

    /// Line ends in the text divide paragraphs, other controls are dropped.
    void addText(std::string_view text, const TextStyle& style, const Look& look);
    void addAttachment(TextAttachment attachment, const TextStyle& style, const Look& look);
    /// A PNG or JPEG picture, known by its bytes; any other is left out.
    void addPicture(std::string bytes, int width, int height, const TextStyle& style, const Look& look);
    /// A tab, unless the row ends behind it.
    void endCell() { ++pendingTabs_; }
    void endRow(const Look& look);
    void endParagraph(const Look& look);
    /// endParagraph(), but not of an empty one.
    void breakParagraph(const Look& look);
    bool atParagraphStart() const { return current_.runs.empty(); }

    /// The whole text, once.
    RichText finish();

    /// A size in twentieths of a point, as a format may claim it, in points.
    static double points(int twentieths);

private:
    void addStretch(std::string_view text, const TextStyle& style, const Look& look);
    void writePendingTabs(const Look& look);

    RichText text_;
    TextParagraph current_;
    std::size_t runs_ = 0;
    int pictures_ = 0;
    int pendingTabs_ = 0;
};

} // namespace lumnara
