#pragma once

#include <string_view>

namespace lumnara {

/// Where the text of a group goes.
enum class RtfDestination {
    body,
    skipped,
    fontTable,
    colorTable,
    listTable,
    listOverrideTable,
    marker,  ///< a list's mark as text, for readers that know no lists
    oldList, ///< a list in the form before tables
    picture,
    attachment,
    fieldInstruction,
    twoForms, ///< a text in the document's bytes, and again in Unicode
};

/// What a control word does.
struct RtfWord {
    enum class Action {
        unknown,
        destination, ///< `destination`; body for a group that is read as if its word weren't there
        // Characters. A parameter of 0 switches these off.
        bold,
        italic,
        underline,
        strikethrough,
        hidden,
        noUnderline,
        plain,
        font,
        size,
        color,
        // Paragraphs.
        paragraphDefaults,
        alignment /* `value` is a TextAlignment */,
        list,
        level,
        // Text.
        character /* `value` is a code point */,
        unit,
        fallbackLength,
        paragraph,
        sectionEnd,
        page,
        cell,
        row,
        // The document and its tables.
        codePage /* `value`, or the parameter where that is 0 */,
        characterSet,
        fontCodePage,
        red,
        green,
        blue,
        listBegin,
        listLevel,
        listFormat,
        listId,
        oldBullet,
        oldNumber,
        pictureWidth,
        pictureHeight,
        pictureScaleX,
        pictureScaleY,
        attachmentWidth,
        attachmentHeight,
        fieldResult,
    };

    Action action = Action::unknown;
    int value = 0;
    RtfDestination destination = RtfDestination::body;

    static RtfWord of(std::string_view word);
};

} // namespace lumnara
