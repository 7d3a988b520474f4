#include "core/text/CodePage.h"

#include "core/text/Utf8.h"

#include <map>
#include <stdexcept>
#include <unicode/ucnv.h>

namespace lumnara::text {

namespace {

/// The names that don't follow from the number.
std::string codePageName(int number) {
    static const std::map<int, std::string> names = {
        {708, "ISO-8859-6"},
        {932, "windows-31j"},
        {936, "windows-936-2000"},
        {949, "windows-949-2000"},
        {950, "windows-950-2000"},
        {10000, "macintosh"},
        {10001, "Shift_JIS"},
        {10006, "x-mac-greek"},
        {10007, "x-mac-cyrillic"},
        {10008, "GB2312"},
        {10029, "x-mac-centraleurroman"},
        {10081, "x-mac-turkish"},
        {65001, "UTF-8"},
    };
    if (const auto found = names.find(number); found != names.end()) return found->second;
    const bool ofWindows = number == 874 || (number >= 1250 && number <= 1258);
    return (ofWindows ? "windows-" : "ibm-") + std::to_string(number);
}

UConverter* openConverter(int number) {
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(codePageName(number).c_str(), &error);
    return U_SUCCESS(error) ? converter : nullptr;
}

} // namespace

void CodePage::Close::operator()(UConverter* converter) const { ucnv_close(converter); }

CodePage::CodePage(int number) : converter_(openConverter(number)) {
    if (!converter_) converter_.reset(openConverter(westernEuropean));
    if (!converter_) throw std::runtime_error("ICU lacks its code pages");
}

std::string CodePage::decode(std::string_view bytes) {
    if (isAscii(bytes)) return std::string(bytes);
    std::string out;
    const char* source = bytes.data();
    const char* end = source + bytes.size();
    ucnv_reset(converter_.get());
    while (source < end) {
        UErrorCode error = U_ZERO_ERROR;
        const char* const before = source;
        const UChar32 c = ucnv_getNextUChar(converter_.get(), &source, end, &error);
        if (error == U_INDEX_OUTOFBOUNDS_ERROR) break;
        const bool isScalar = U_SUCCESS(error) && c >= 0 && c <= 0x10FFFF && (c & 0xFFFFF800) != 0xD800;
        appendUtf8(out, isScalar ? static_cast<char32_t>(c) : replacementCharacter);
        if (source == before) ++source;
    }
    return out;
}

} // namespace lumnara::text
