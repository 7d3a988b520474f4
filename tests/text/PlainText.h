#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>
#include <vector>

/// The rules of core/text read plainly, each call straight to ICU: slow, and short enough to be seen right.
namespace lumnara::testing::plain {

inline void require(UErrorCode error) {
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
}

/// A byte that belongs to no well-formed sequence becomes U+FFFD.
inline icu::UnicodeString decoded(std::string_view text) {
    icu::UnicodeString out;
    for (std::size_t at = 0; at < text.size();) {
        UChar32 found = 0xFFFD;
        std::size_t size = 1;
        for (std::size_t n = 1; n <= 4 && at + n <= text.size(); ++n) {
            int32_t end = 0;
            UChar32 c = 0;
            U8_NEXT(text.data() + at, end, static_cast<int32_t>(n), c);
            if (c < 0 || end != static_cast<int32_t>(n)) continue;
            found = c;
            size = n;
            break;
        }
        out.append(found);
        at += size;
    }
    return out;
}

inline std::string encoded(const icu::UnicodeString& text) {
    std::string out;
    return text.toUTF8String(out);
}

inline std::vector<std::string> characters(const icu::UnicodeString& text) {
    thread_local const std::unique_ptr<icu::BreakIterator> breaks = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
        require(error);
        return made;
    }();
    breaks->setText(text);
    std::vector<std::string> out;
    for (int32_t start = 0, end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        out.push_back(encoded(text.tempSubStringBetween(start, end)));
        start = end;
    }
    return out;
}

inline std::vector<std::string> characters(std::string_view text) { return characters(decoded(text)); }

inline icu::UnicodeString withoutWidth(const icu::UnicodeString& text, const icu::Normalizer2& nfkd) {
    icu::UnicodeString out, decomposition;
    for (int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 c = text.char32At(at);
        const int type = u_getIntPropertyValue(c, UCHAR_DECOMPOSITION_TYPE);
        // The ideographic space is a wide form by name and property; below it nothing is.
        const bool byWidth =
            (type == U_DT_WIDE || type == U_DT_NARROW) && nfkd.getDecomposition(c, decomposition);
        if (byWidth) {
            out.append(decomposition);
        } else {
            out.append(c);
        }
    }
    return out;
}

inline bool isDiacritic(UChar32 c) {
    const int type = u_charType(c), combining = u_getCombiningClass(c);
    if (type == U_ENCLOSING_MARK) return true;
    if (type != U_NON_SPACING_MARK) return false;
    if (u_hasBinaryProperty(c, UCHAR_VARIATION_SELECTOR)) return true;
    return combining != 0 && combining != 7 && combining != 8 && combining != 9;
}

inline icu::UnicodeString foldedText(std::string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    const icu::Normalizer2& nfc = *icu::Normalizer2::getNFCInstance(error);
    const icu::Normalizer2& nfd = *icu::Normalizer2::getNFDInstance(error);
    const icu::Normalizer2& nfkd = *icu::Normalizer2::getNFKDInstance(error);
    icu::UnicodeString folded = nfd.normalize(withoutWidth(decoded(text), nfkd), error);
    folded = nfd.normalize(folded.foldCase(), error);
    icu::UnicodeString bare;
    for (int32_t at = 0; at < folded.length(); at = folded.moveIndex32(at, 1)) {
        if (!isDiacritic(folded.char32At(at))) bare.append(folded.char32At(at));
    }
    folded = nfc.normalize(bare.toLower(icu::Locale::getRoot()), error);
    require(error);
    return folded;
}

inline std::string fold(std::string_view text) { return encoded(foldedText(text)); }

inline bool isWord(const std::string& character) {
    const UChar32 c = decoded(character).char32At(0);
    return u_hasBinaryProperty(c, UCHAR_ALPHABETIC) || u_getNumericValue(c) != U_NO_NUMERIC_VALUE;
}

inline std::string trimmed(std::string_view text) {
    icu::UnicodeString out = decoded(text);
    while (!out.isEmpty() && u_isUWhiteSpace(out.char32At(0))) out.remove(0, out.moveIndex32(0, 1));
    while (!out.isEmpty() && u_isUWhiteSpace(out.char32At(out.length() - 1))) {
        out.truncate(out.moveIndex32(out.length(), -1));
    }
    return encoded(out);
}

inline std::string normalize(std::string_view text) {
    std::vector<std::string> written;
    for (const std::string& character : characters(foldedText(text))) {
        if (isWord(character)) {
            written.push_back(character);
        } else if (!written.empty() && written.back() != " ") {
            written.push_back(" ");
        }
    }
    std::string out;
    for (const std::string& character : written) out += character;
    return trimmed(out);
}

} // namespace lumnara::testing::plain
