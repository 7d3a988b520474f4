#include "core/text/Text.h"

#include "core/text/CodePoints.h"
#include "core/text/IcuFolding.h"

#include <algorithm>
#include <array>

namespace lumnara::text {
namespace {

/// What an ASCII character is in a normalised text: itself, in lower case, or a blank.
constexpr auto asciiWordCharacters = [] {
    std::array<char, 128> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const char c = static_cast<char>(i);
        const bool word = (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        table[i] = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : word ? c : ' ';
    }
    return table;
}();

constexpr char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
bool isAsciiByte(char c) { return static_cast<unsigned char>(c) < 0x80; }

bool isWordCluster(std::string_view cluster) { return isLetter(cluster) || isNumber(cluster); }

const CodePointInfo& firstInfo(std::string_view cluster) {
    std::size_t at = 0;
    return CodePoints::shared().info(decodeNext(cluster, at));
}

/// Folds point by point. False when a neighbour could matter; `out` is then of no use.
bool foldByTable(std::string_view text, std::string& out) {
    const CodePoints& points = CodePoints::shared();
    for (std::size_t at = 0; at < text.size();) {
        if (isAsciiByte(text[at])) {
            out += asciiLower(text[at++]);
            continue;
        }
        const char32_t c = decodeNext(text, at);
        const auto& page = points.page(c);
        const CodePointInfo& info = page.infos[c & 0xFF];
        switch (info.folding) {
        case Folding::dropped: break;
        case Folding::one: appendUtf8(out, info.folded); break;
        case Folding::several: out += page.text(info); break;
        case Folding::context: return false;
        }
    }
    return true;
}

void appendBlank(std::string& out) {
    if (!out.empty() && out.back() != ' ') out += ' ';
}

/// Folds and separates in one pass. False when clusters could form; `out` is then of no use.
bool normalizeByTable(std::string_view text, std::string& out) {
    const CodePoints& points = CodePoints::shared();
    for (std::size_t at = 0; at < text.size();) {
        if (isAsciiByte(text[at])) {
            const char c = asciiWordCharacters[static_cast<std::size_t>(text[at++])];
            if (c == ' ') {
                appendBlank(out);
            } else {
                out += c;
            }
            continue;
        }
        const char32_t c = decodeNext(text, at);
        const auto& page = points.page(c);
        const CodePointInfo& info = page.infos[c & 0xFF];
        if (info.folding == Folding::dropped) continue;
        if (info.folding == Folding::context || !info.has(CodePointInfo::foldsToLone)) return false;
        if (info.has(CodePointInfo::foldsToSeparator)) {
            appendBlank(out);
        } else if (!info.has(CodePointInfo::foldsToWord)) {
            return false;
        } else if (info.folding == Folding::one) {
            appendUtf8(out, info.folded);
        } else {
            out += page.text(info);
        }
    }
    if (!out.empty() && out.back() == ' ') out.pop_back();
    return true;
}

void normalizeByCluster(std::string_view folded, std::string& out) {
    bool blank = true; // the last character written is a blank, or there is none
    for (const std::string_view cluster : Clusters(folded)) {
        if (isWordCluster(cluster)) {
            out += cluster;
            blank = false;
        } else if (!blank) {
            out += ' ';
            blank = true;
        }
    }
    out.resize(trim(out).size()); // it never begins with whitespace
}

} // namespace

std::string withoutControls(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = decodeNext(text, at);
        const bool isControl = c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029;
        if (!isControl) appendUtf8(out, c);
    }
    return out;
}

std::vector<std::string_view> splitAtWhitespace(std::string_view text) {
    const CodePoints& points = CodePoints::shared();
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t here = at;
        if (!points.info(decodeNext(text, at)).has(CodePointInfo::whitespace)) continue;
        if (here > start) pieces.push_back(text.substr(start, here - start));
        start = at;
    }
    if (start < text.size()) pieces.push_back(text.substr(start));
    return pieces;
}

std::string_view trim(std::string_view text) {
    const CodePoints& points = CodePoints::shared();
    std::size_t begin = text.size(), end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t here = at;
        if (points.info(decodeNext(text, at)).has(CodePointInfo::whitespace)) continue;
        begin = std::min(begin, here);
        end = at;
    }
    return begin < end ? text.substr(begin, end - begin) : std::string_view{};
}

bool isLetter(std::string_view cluster) {
    return !cluster.empty() && firstInfo(cluster).has(CodePointInfo::letter);
}

bool isNumber(std::string_view cluster) {
    return !cluster.empty() && firstInfo(cluster).has(CodePointInfo::number);
}

std::string fold(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    return foldByTable(text, out) ? out : icuFold(text);
}

void normalize(std::string_view text, std::string& out) {
    out.clear();
    if (normalizeByTable(text, out)) return;
    out.clear();
    normalizeByCluster(fold(text), out);
}

std::string normalize(std::string_view text) {
    std::string out;
    normalize(text, out);
    return out;
}

std::string composed(std::string_view text) { return isAscii(text) ? std::string(text) : icuComposed(text); }

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

} // namespace lumnara::text
