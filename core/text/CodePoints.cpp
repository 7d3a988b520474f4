#include "core/text/CodePoints.h"

#include "core/text/IcuFolding.h"
#include "core/text/Utf8.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uscript.h>

namespace lumnara::text {
namespace {

GraphemeBreak graphemeBreakOf(UChar32 c) {
    if (u_hasBinaryProperty(c, UCHAR_EXTENDED_PICTOGRAPHIC)) return GraphemeBreak::pictographic;
    switch (u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK)) {
    case U_GCB_CR: return GraphemeBreak::cr;
    case U_GCB_LF: return GraphemeBreak::lf;
    case U_GCB_CONTROL: return GraphemeBreak::control;
    case U_GCB_EXTEND: return GraphemeBreak::extend;
    case U_GCB_ZWJ: return GraphemeBreak::zwj;
    case U_GCB_REGIONAL_INDICATOR: return GraphemeBreak::regionalIndicator;
    case U_GCB_PREPEND: return GraphemeBreak::prepend;
    case U_GCB_SPACING_MARK: return GraphemeBreak::spacingMark;
    case U_GCB_L: return GraphemeBreak::l;
    case U_GCB_V: return GraphemeBreak::v;
    case U_GCB_T: return GraphemeBreak::t;
    case U_GCB_LV: return GraphemeBreak::lv;
    case U_GCB_LVT: return GraphemeBreak::lvt;
    default: return GraphemeBreak::other;
    }
}

/// The derivation of Indic_Conjunct_Break in Unicode 15.1, of which older ICUs have only the ingredients.
IndicConjunct indicConjunctOf(UChar32 c, GraphemeBreak graphemeBreak) {
    UErrorCode error = U_ZERO_ERROR;
    switch (uscript_getScript(c, &error)) {
    case USCRIPT_BENGALI:
    case USCRIPT_DEVANAGARI:
    case USCRIPT_GUJARATI:
    case USCRIPT_MALAYALAM:
    case USCRIPT_ORIYA:
    case USCRIPT_TELUGU: {
        const int category = u_getIntPropertyValue(c, UCHAR_INDIC_SYLLABIC_CATEGORY);
        if (category == U_INSC_CONSONANT) return IndicConjunct::consonant;
        if (category == U_INSC_VIRAMA) return IndicConjunct::linker;
        break;
    }
    default: break;
    }
    const bool extends = graphemeBreak == GraphemeBreak::extend && u_getCombiningClass(c) != 0;
    return extends || graphemeBreak == GraphemeBreak::zwj ? IndicConjunct::extend : IndicConjunct::none;
}

bool isLone(GraphemeBreak value) {
    switch (value) {
    case GraphemeBreak::other:
    case GraphemeBreak::cr:
    case GraphemeBreak::lf:
    case GraphemeBreak::control:
    case GraphemeBreak::lv:
    case GraphemeBreak::lvt:
    case GraphemeBreak::pictographic: return true;
    default: return false;
    }
}

bool isLetterPoint(UChar32 c) { return u_hasBinaryProperty(c, UCHAR_ALPHABETIC); }
bool isNumberPoint(UChar32 c) { return u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE; }

CodePointInfo describe(char32_t c, std::string& texts) {
    CodePointInfo info;
    const auto point = static_cast<UChar32>(c);
    info.graphemeBreak = graphemeBreakOf(point);
    info.indicConjunct = indicConjunctOf(point, info.graphemeBreak);
    if (isLetterPoint(point)) info.flags |= CodePointInfo::letter;
    if (isNumberPoint(point)) info.flags |= CodePointInfo::number;
    if (u_isUWhiteSpace(point)) info.flags |= CodePointInfo::whitespace;
    if (U_IS_SURROGATE(point)) { // no decoder gives one
        info.folding = Folding::one;
        info.folded = replacementCharacter;
        return info;
    }

    std::string one;
    appendUtf8(one, c);
    const std::string folded = icuFold(one);
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* nfc = unorm2_getNFCInstance(&error);
    bool context = false, word = true, separator = true, lone = true;
    std::size_t count = 0;
    for (std::size_t at = 0; at < folded.size(); ++count) {
        const auto part = static_cast<UChar32>(decodeNext(folded, at));
        const bool inWord = isLetterPoint(part) || isNumberPoint(part);
        word = word && inWord;
        separator = separator && !inWord;
        lone = lone && isLone(graphemeBreakOf(part));
        context = context || u_getCombiningClass(part) != 0 || !unorm2_hasBoundaryBefore(nfc, part);
    }
    if (word) info.flags |= CodePointInfo::foldsToWord;
    if (separator) info.flags |= CodePointInfo::foldsToSeparator;
    if (lone) info.flags |= CodePointInfo::foldsToLone;

    if (context) {
        info.folding = Folding::context;
    } else if (count == 0) {
        info.folding = Folding::dropped;
    } else if (count == 1) {
        std::size_t at = 0;
        info.folding = Folding::one;
        info.folded = static_cast<std::uint32_t>(decodeNext(folded, at));
    } else {
        info.folding = Folding::several;
        info.folded = static_cast<std::uint32_t>(texts.size() << 8 | folded.size());
        texts += folded;
    }
    return info;
}

} // namespace

const CodePoints& CodePoints::shared() {
    // Never destroyed: a thread may still compare texts while the program ends.
    static const CodePoints& points = *new CodePoints;
    return points;
}

const CodePoints::Page& CodePoints::fill(std::uint32_t index) const {
    const std::lock_guard guard(filling_);
    if (const Page* page = pages_[index].load(std::memory_order_acquire)) return *page;
    auto page = std::make_unique<Page>();
    for (std::uint32_t i = 0; i < 256; ++i) page->infos[i] = describe(index << 8 | i, page->texts);
    owned_[index] = std::move(page);
    pages_[index].store(owned_[index].get(), std::memory_order_release);
    return *owned_[index];
}

} // namespace lumnara::text
