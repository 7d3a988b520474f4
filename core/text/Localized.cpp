#include "core/text/CodePoints.h"
#include "core/text/Text.h"

#include <stdexcept>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/ucol.h>
#include <unicode/uloc.h>

namespace lumnara::text {
namespace {

/// One collator for the program's life: opening one takes milliseconds, comparing with it from several
/// threads is allowed.
const UCollator* collator() {
    static const UCollator* const shared = [] {
        // The C and POSIX locales order by code point, capitals apart from small letters; nobody who reads a
        // list means that, so the root order stands in.
        const std::string_view locale = uloc_getDefault();
        const bool posix = locale == "en_US_POSIX" || locale == "c";
        UErrorCode error = U_ZERO_ERROR;
        UCollator* opened = ucol_open(posix ? "" : nullptr, &error);
        if (U_FAILURE(error)) {
            error = U_ZERO_ERROR;
            opened = ucol_open("", &error);
        }
        if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
        ucol_setStrength(opened, UCOL_SECONDARY);
        return opened;
    }();
    return shared;
}

using CaseMapping = void (*)(const char*, uint32_t, icu::StringPiece, icu::ByteSink&, icu::Edits*,
                             UErrorCode&);

std::string caseMapped(std::string_view text, CaseMapping map) {
    std::string out;
    icu::StringByteSink<std::string> sink(&out, static_cast<int32_t>(text.size()));
    UErrorCode error = U_ZERO_ERROR;
    map("", 0, icu::StringPiece(text.data(), static_cast<int32_t>(text.size())), sink, nullptr, error);
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
    return out;
}

} // namespace

std::string lowercased(std::string_view text) { return caseMapped(text, icu::CaseMap::utf8ToLower); }
std::string uppercased(std::string_view text) { return caseMapped(text, icu::CaseMap::utf8ToUpper); }

std::weak_ordering compareLocalized(std::string_view a, std::string_view b) {
    UErrorCode error = U_ZERO_ERROR;
    const auto order = ucol_strcollUTF8(collator(), a.data(), static_cast<int32_t>(a.size()), b.data(),
                                        static_cast<int32_t>(b.size()), &error);
    if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
    return static_cast<int>(order) <=> 0;
}

void warmUp() {
    // Latin to Thai, punctuation and symbols; the many pages of the other scripts fill when met.
    for (char32_t page = 0; page < 0x0F; ++page) CodePoints::shared().page(page << 8);
    for (char32_t page = 0x1E; page < 0x28; ++page) CodePoints::shared().page(page << 8);
    compareLocalized("a", "b");
}

} // namespace lumnara::text
