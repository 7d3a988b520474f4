#include "core/text/IcuFolding.h"

#include "core/text/Utf8.h"

#include <stdexcept>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace lumnara::text {
namespace {

void check(UErrorCode error) {
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
}

const UNormalizer2* normalizer(const UNormalizer2* (*instance)(UErrorCode*)) {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* result = instance(&error);
    check(error);
    return result;
}

/// Calls an ICU function that writes UTF-16 into a buffer and tells the length it needs.
template <class Call> std::u16string written(std::size_t expected, Call&& call) {
    std::u16string out(expected + 16, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    auto length = call(out.data(), static_cast<int32_t>(out.size()), &error);
    if (error == U_BUFFER_OVERFLOW_ERROR) {
        out.resize(static_cast<std::size_t>(length));
        error = U_ZERO_ERROR;
        length = call(out.data(), static_cast<int32_t>(out.size()), &error);
    }
    check(error);
    out.resize(static_cast<std::size_t>(length));
    return out;
}

std::u16string normalized(const UNormalizer2* form, const std::u16string& text) {
    return written(text.size(), [&](char16_t* out, int32_t capacity, UErrorCode* error) {
        return unorm2_normalize(form, text.data(), static_cast<int32_t>(text.size()), out, capacity, error);
    });
}

void appendUtf16(std::u16string& out, UChar32 c) {
    if (c > 0xFFFF) {
        out += static_cast<char16_t>(U16_LEAD(c));
        out += static_cast<char16_t>(U16_TRAIL(c));
    } else {
        out += static_cast<char16_t>(c);
    }
}

std::u16string utf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) appendUtf16(out, static_cast<UChar32>(decodeNext(text, at)));
    return out;
}

std::string utf8(const std::u16string& text) {
    std::string out;
    out.reserve(text.size());
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, length, c);
        appendUtf8(out, static_cast<char32_t>(c));
    }
    return out;
}

/// Full width and half width forms become the ordinary ones.
std::u16string withoutWidth(std::string_view text) {
    const UNormalizer2* nfkd = normalizer(unorm2_getNFKDInstance);
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const auto c = static_cast<UChar32>(decodeNext(text, at));
        const int type = c < 0x3000 ? 0 : u_getIntPropertyValue(c, UCHAR_DECOMPOSITION_TYPE);
        if (type != U_DT_WIDE && type != U_DT_NARROW) {
            appendUtf16(out, c);
            continue;
        }
        out += written(4, [&](char16_t* buffer, int32_t capacity, UErrorCode* error) {
            return unorm2_getDecomposition(nfkd, c, buffer, capacity, error);
        });
    }
    return out;
}

/// Accents and points go; vowel signs, nuktas, kana voicing and viramas are part of the word.
bool isDiacritic(UChar32 c) {
    const auto type = u_charType(c);
    if (type == U_ENCLOSING_MARK) return true;
    if (type != U_NON_SPACING_MARK) return false;
    const int combiningClass = u_getCombiningClass(c);
    const bool partOfWord =
        combiningClass == 0 || combiningClass == 7 || combiningClass == 8 || combiningClass == 9;
    return !partOfWord || u_hasBinaryProperty(c, UCHAR_VARIATION_SELECTOR);
}

std::u16string withoutDiacritics(const std::u16string& decomposed) {
    std::u16string out;
    out.reserve(decomposed.size());
    const auto length = static_cast<int32_t>(decomposed.size());
    for (int32_t i = 0; i < length;) {
        UChar32 c = 0;
        U16_NEXT(decomposed.data(), i, length, c);
        if (!isDiacritic(c)) appendUtf16(out, c);
    }
    return out;
}

} // namespace

std::string icuFold(std::string_view text) {
    const UNormalizer2* nfd = normalizer(unorm2_getNFDInstance);
    const std::u16string decomposed = normalized(nfd, withoutWidth(text));
    const auto caseless = written(decomposed.size(), [&](char16_t* out, int32_t capacity, UErrorCode* error) {
        return u_strFoldCase(out, capacity, decomposed.data(), static_cast<int32_t>(decomposed.size()),
                             U_FOLD_CASE_DEFAULT, error);
    });
    const std::u16string plain = withoutDiacritics(normalized(nfd, caseless));
    // Case folding makes capitals of some small letters (Cherokee); the lower case is the form we compare.
    const auto lower = written(plain.size(), [&](char16_t* out, int32_t capacity, UErrorCode* error) {
        return u_strToLower(out, capacity, plain.data(), static_cast<int32_t>(plain.size()), "", error);
    });
    return utf8(normalized(normalizer(unorm2_getNFCInstance), lower));
}

std::string icuComposed(std::string_view text) {
    return utf8(normalized(normalizer(unorm2_getNFCInstance), utf16(text)));
}

} // namespace lumnara::text
