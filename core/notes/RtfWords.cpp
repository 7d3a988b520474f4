#include "core/notes/RtfWords.h"

#include <unordered_map>

namespace lumnara {

namespace {

using Action = RtfWord::Action;
using Destination = RtfDestination;

RtfWord goesTo(Destination destination) { return {Action::destination, 0, destination}; }
RtfWord writes(char32_t c) { return {Action::character, static_cast<int>(c)}; }

const std::unordered_map<std::string_view, RtfWord>& rtfWords() {
    static const std::unordered_map<std::string_view, RtfWord> words = {
        {"fonttbl", goesTo(Destination::fontTable)},
        {"colortbl", goesTo(Destination::colorTable)},
        {"listtable", goesTo(Destination::listTable)},
        {"listoverridetable", goesTo(Destination::listOverrideTable)},
        {"listtext", goesTo(Destination::marker)},
        {"pntext", goesTo(Destination::marker)},
        {"pn", goesTo(Destination::oldList)},
        {"pict", goesTo(Destination::picture)},
        {"NeXTGraphic", goesTo(Destination::attachment)},
        {"fldinst", goesTo(Destination::fieldInstruction)},
        {"upr", goesTo(Destination::twoForms)},
        // Marked as ignorable, but what they hold is seen.
        {"ud", goesTo(Destination::body)},
        {"shppict", goesTo(Destination::body)},
        {"shpinst", goesTo(Destination::body)},
        {"nesttableprops", goesTo(Destination::body)},
        // Not marked as ignorable, but what they hold isn't seen, or is seen elsewhere.
        {"stylesheet", goesTo(Destination::skipped)},
        {"info", goesTo(Destination::skipped)},
        {"header", goesTo(Destination::skipped)},
        {"headerl", goesTo(Destination::skipped)},
        {"headerr", goesTo(Destination::skipped)},
        {"headerf", goesTo(Destination::skipped)},
        {"footer", goesTo(Destination::skipped)},
        {"footerl", goesTo(Destination::skipped)},
        {"footerr", goesTo(Destination::skipped)},
        {"footerf", goesTo(Destination::skipped)},
        {"filetbl", goesTo(Destination::skipped)},
        {"nonshppict", goesTo(Destination::skipped)},
        {"nonesttables", goesTo(Destination::skipped)},
        {"shprslt", goesTo(Destination::skipped)},
        {"sp", goesTo(Destination::skipped)},
        {"tc", goesTo(Destination::skipped)},
        {"tcn", goesTo(Destination::skipped)},
        {"xe", goesTo(Destination::skipped)},

        {"b", {Action::bold}},
        {"i", {Action::italic}},
        {"ul", {Action::underline}},
        {"uld", {Action::underline}},
        {"uldash", {Action::underline}},
        {"uldashd", {Action::underline}},
        {"uldashdd", {Action::underline}},
        {"uldb", {Action::underline}},
        {"ulhwave", {Action::underline}},
        {"ulldash", {Action::underline}},
        {"ulth", {Action::underline}},
        {"ulthd", {Action::underline}},
        {"ulthdash", {Action::underline}},
        {"ulthdashd", {Action::underline}},
        {"ulthdashdd", {Action::underline}},
        {"ulthldash", {Action::underline}},
        {"ululdbwave", {Action::underline}},
        {"ulw", {Action::underline}},
        {"ulwave", {Action::underline}},
        {"ulnone", {Action::noUnderline}},
        {"strike", {Action::strikethrough}},
        {"striked", {Action::strikethrough}},
        {"v", {Action::hidden}},
        {"deleted", {Action::hidden}},
        {"plain", {Action::plain}},
        {"f", {Action::font}},
        {"fs", {Action::size}},
        {"cf", {Action::color}},

        {"pard", {Action::paragraphDefaults}},
        {"ql", {Action::alignment, 0}},
        {"qc", {Action::alignment, 1}},
        {"qr", {Action::alignment, 2}},
        {"qj", {Action::alignment, 3}},
        {"qd", {Action::alignment, 3}},
        {"ls", {Action::list}},
        {"ilvl", {Action::level}},

        {"tab", writes('\t')},
        {"line", writes(0x2028)},
        {"lbr", writes(0x2028)},
        {"emdash", writes(0x2014)},
        {"endash", writes(0x2013)},
        {"emspace", writes(0x2003)},
        {"enspace", writes(0x2002)},
        {"qmspace", writes(0x2005)},
        {"bullet", writes(0x2022)},
        {"lquote", writes(0x2018)},
        {"rquote", writes(0x2019)},
        {"ldblquote", writes(0x201C)},
        {"rdblquote", writes(0x201D)},
        {"zwj", writes(0x200D)},
        {"zwnj", writes(0x200C)},
        {"zwbo", writes(0x200B)},
        {"zwnbo", writes(0x2060)},
        {"ltrmark", writes(0x200E)},
        {"rtlmark", writes(0x200F)},
        {"u", {Action::unit}},
        {"uc", {Action::fallbackLength}},
        {"par", {Action::paragraph}},
        {"sect", {Action::sectionEnd}},
        {"page", {Action::page}},
        {"column", {Action::page}},
        {"cell", {Action::cell}},
        {"nestcell", {Action::cell}},
        {"row", {Action::row}},
        {"nestrow", {Action::row}},

        {"ansicpg", {Action::codePage}},
        {"ansi", {Action::codePage, 1252}},
        {"mac", {Action::codePage, 10000}},
        {"pc", {Action::codePage, 437}},
        {"pca", {Action::codePage, 850}},
        {"fcharset", {Action::characterSet}},
        {"cpg", {Action::fontCodePage}},
        {"red", {Action::red}},
        {"green", {Action::green}},
        {"blue", {Action::blue}},
        {"list", {Action::listBegin}},
        {"listlevel", {Action::listLevel}},
        {"levelnfc", {Action::listFormat}},
        {"levelnfcn", {Action::listFormat}},
        {"listid", {Action::listId}},
        {"pnlvlblt", {Action::oldBullet}},
        {"pnlvlbody", {Action::oldNumber}},
        {"pnlvl", {Action::oldNumber}},
        {"picwgoal", {Action::pictureWidth}},
        {"pichgoal", {Action::pictureHeight}},
        {"picscalex", {Action::pictureScaleX}},
        {"picscaley", {Action::pictureScaleY}},
        {"width", {Action::attachmentWidth}},
        {"height", {Action::attachmentHeight}},
        {"fldrslt", {Action::fieldResult}},
    };
    return words;
}

} // namespace

RtfWord RtfWord::of(std::string_view word) {
    const auto found = rtfWords().find(word);
    return found == rtfWords().end() ? RtfWord{} : found->second;
}

} // namespace lumnara
