#pragma once

#include "core/notes/RichText.h"

#include <optional>
#include <string_view>

namespace lumnara {

/// Reads the Rich Text Format (version 1.9.1) as any writer left it: of styles what
/// RichText has, of everything else the text that a reader of the document sees.
///
/// Kept: paragraphs and line breaks; bold, italic, underline, strike, size, colour, font family; alignment;
/// lists by tables or in the old form; addresses of links; PNG and JPEG pictures. Table cells are divided
/// by tabs and rows are paragraphs. Left out: headers, footers, deleted and hidden text, comments, what an
/// unknown writer marks as ignorable.
///
/// A file of a package is named by a group whose word is NeXTGraphic, before the attachment character:
///
///     {{\NeXTGraphic picture.png \width640 \height480}\'ac}
///
/// width and height are twentieths of a point and may be missing.
class RtfReader {
public:
    /// Nothing when the text doesn't begin as rich text does; otherwise what could be read, also of a
    /// damaged or cut text. Files of a package are named, not read: `attachments` holds embedded pictures
    /// only. Time and memory are linear in the input.
    static std::optional<RichText> read(std::string_view rtf);
};

} // namespace lumnara
