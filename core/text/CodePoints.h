#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace lumnara::text {

/// The Grapheme_Cluster_Break values of UAX #29, with Extended_Pictographic beside them (no code point
/// has both).
enum class GraphemeBreak : std::uint8_t {
    other,
    cr,
    lf,
    control,
    extend,
    zwj,
    regionalIndicator,
    prepend,
    spacingMark,
    l,
    v,
    t,
    lv,
    lvt,
    pictographic,
};

/// The part of a code point in a conjunct of the Indic scripts that stack their consonants.
enum class IndicConjunct : std::uint8_t { none, consonant, linker, extend };

/// What a code point becomes when case, diacritics and width are folded away.
enum class Folding : std::uint8_t {
    dropped,
    one,     ///< one code point
    several, ///< a short text
    context, ///< it may compose or trade places with its neighbours: only the whole text can be folded
};

/// What this room needs to know of one code point.
struct CodePointInfo {
    enum Flag : std::uint8_t {
        letter = 1,
        number = 2,
        whitespace = 4,
        foldsToWord = 8,       ///< all that it folds to are letters and numbers
        foldsToSeparator = 16, ///< none of what it folds to is a letter or a number
        foldsToLone = 32,      ///< what it folds to joins only neighbours that aren't lone themselves
    };

    std::uint32_t folded = 0; ///< Folding::one: the code point; several: where its text lies in the page
    Folding folding = Folding::dropped;
    GraphemeBreak graphemeBreak = GraphemeBreak::other;
    IndicConjunct indicConjunct = IndicConjunct::none;
    std::uint8_t flags = 0;

    bool has(Flag flag) const { return (flags & flag) != 0; }
};

/// The properties of all code points, from ICU, in pages that are filled when first met: an answer costs
/// two loads where ICU takes some ten calls. Any thread.
class CodePoints {
public:
    struct Page {
        std::array<CodePointInfo, 256> infos;
        std::string texts;

        std::string_view text(const CodePointInfo& info) const {
            return std::string_view(texts).substr(info.folded >> 8, info.folded & 0xFF);
        }
    };

    static const CodePoints& shared();

    const Page& page(char32_t c) const {
        const Page* page = pages_[c >> 8].load(std::memory_order_acquire);
        return page ? *page : fill(c >> 8);
    }
    const CodePointInfo& info(char32_t c) const { return page(c).infos[c & 0xFF]; }

private:
    CodePoints() = default;
    const Page& fill(std::uint32_t index) const;

    static constexpr std::size_t pageCount = 0x1100;
    mutable std::array<std::atomic<const Page*>, pageCount> pages_{};
    mutable std::array<std::unique_ptr<const Page>, pageCount> owned_;
    mutable std::mutex filling_;
};

} // namespace lumnara::text
