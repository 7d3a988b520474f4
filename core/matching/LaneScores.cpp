// Vectors wider than the machine's cross no call here: all that takes or gives them is always inlined.
#pragma GCC diagnostic ignored "-Wpsabi"

#include "core/matching/LaneScores.h"

#include "core/matching/Measures.h"

#include <algorithm>
#include <cstring>

namespace lumnara {
namespace {

template <class Word, std::size_t count> struct VectorOf {
    using type [[gnu::vector_size(sizeof(Word) * count)]] = Word;
};

constexpr std::size_t chunk = 4; // the doubles that are computed at a time
using Doubles = VectorOf<double, chunk>::type;
using Ints = VectorOf<std::int32_t, chunk>::type;

/// What a walk of the query through a block has counted, lane by lane.
template <class Word> struct Counts {
    static constexpr std::size_t lanes = LaneBlock::bytes / sizeof(Word);
    using Vector = typename VectorOf<Word, lanes>::type;

    Vector distance;
    Vector matched;
    Vector transposed;
    Vector prefix;
    Vector beginsWord; ///< 1 or 0
};

template <class Vector> [[gnu::always_inline]] inline Vector load(const Lanes& lanes) {
    static_assert(sizeof(Vector) == sizeof(Lanes));
    Vector vector;
    std::memcpy(&vector, &lanes, sizeof(vector));
    return vector;
}

/// The places within `window` of `place`, in a phrase of `length` characters.
template <class Word> [[gnu::always_inline]] inline Word placesAround(int place, int window, int length) {
    const int low = std::max(place - window, 0), high = std::min(place + window, length - 1);
    if (low > high) return 0;
    return static_cast<Word>((~std::uint64_t{0} >> (63 - (high - low))) << low);
}

template <class Word>
[[gnu::always_inline]] inline void count(const LaneBlock& block, std::size_t index, const LaneQuery& query,
                                         Counts<Word>& counts) {
    using Vector = typename Counts<Word>::Vector;
    const Vector zero = {};
    const Vector one = zero + Word{1};
    const int length = static_cast<int>(query.rows.size());
    const int window = Measures::jaroWindow(std::max(length, block.length));
    const int top = block.length - 1;

    Vector hits[LaneQuery::longest];
    Vector used = zero, matched = zero;
    Vector begins = query.hasBlank ? one : load<Vector>(block.wordStarts) | one;
    Vector same = one, prefix = zero;
    Vector positive = ~zero, negative = zero, diagonal = zero, before = zero;
    Vector distance = zero + static_cast<Word>(block.length);

    for (int i = 0; i < length; ++i) {
        const Vector places = load<Vector>(query.rows[static_cast<std::size_t>(i)][index]);

        // Jaro: the first place in reach that no earlier character has taken.
        Vector hit = places & placesAround<Word>(i, window, block.length) & ~used;
        hit &= zero - hit;
        hits[i] = hit;
        used |= hit;
        matched -= (Vector)(hit != zero);

        if (i <= top) {
            begins &= places >> static_cast<Word>(i);
            if (i < Measures::longestPrefix) {
                same &= places >> static_cast<Word>(i);
                prefix += same;
            }
        }

        const Vector swapped = ((~diagonal & places) << Word{1}) & before;
        diagonal = (((places & positive) + positive) ^ positive) | places | negative | swapped;
        Vector up = negative | ~(diagonal | positive);
        Vector down = diagonal & positive;
        distance += (up >> static_cast<Word>(top)) & one;
        distance -= (down >> static_cast<Word>(top)) & one;
        up = (up << Word{1}) | one;
        down <<= Word{1};
        positive = down | ~(diagonal | up);
        negative = up & diagonal;
        before = places;
    }
    counts.distance = distance;
    counts.matched = matched;
    counts.prefix = prefix;
    counts.beginsWord = length <= block.length ? (Vector)(begins != zero) & one : zero;

    // The k-th matched character of the query against the k-th of the phrase.
    Vector left = used, transposed = zero;
    for (int i = 0; i < length; ++i) {
        const Vector places = load<Vector>(query.rows[static_cast<std::size_t>(i)][index]);
        const Vector isMatched = (Vector)(hits[i] != zero);
        const Vector lowest = left & (zero - left) & isMatched;
        transposed -= (Vector)((lowest & places) == zero) & isMatched;
        left &= ~lowest;
    }
    counts.transposed = transposed;
}

template <class Word> [[gnu::always_inline]] inline Doubles doubles(const void* lanes, std::size_t at) {
    typename VectorOf<Word, chunk>::type some;
    std::memcpy(&some, static_cast<const char*>(lanes) + at * sizeof(Word), sizeof(some));
    return __builtin_convertvector(__builtin_convertvector(some, Ints), Doubles);
}

[[gnu::always_inline]] inline Doubles larger(const Doubles& a, const Doubles& b) { return a > b ? a : b; }

template <class Word>
[[gnu::always_inline]] inline void scoreBlock(const LaneBlock& block, std::size_t index,
                                              const LaneQuery& query, double* scores) {
    Counts<Word> counts;
    count(block, index, query, counts);

    const double a = static_cast<double>(query.rows.size()), b = block.length;
    const double longer = std::max(a, b);
    const bool bonus = query.rows.size() >= query.prefix.leastCharacters;
    const Doubles zero = {};
    const Doubles one = zero + 1.0;
    for (std::size_t at = 0; at < Counts<Word>::lanes; at += chunk) {
        const Doubles matched = doubles<Word>(&counts.matched, at);
        const Doubles begins = doubles<Word>(&counts.beginsWord, at);
        const Doubles jaro = Measures::jaroWinkler<Doubles>(
            a, b, matched, doubles<Word>(&counts.transposed, at), doubles<Word>(&counts.prefix, at));
        const Doubles ratio = 1.0 - doubles<Word>(&counts.distance, at) / longer;

        Doubles score;
        std::memcpy(&score, scores + at, sizeof(score));
        score = larger(larger(score, matched > zero ? jaro : zero), ratio);
        if (bonus) score = begins > zero ? score + query.prefix.bonus : score;
        score = score > one ? one : score;
        if (a == b) score = begins > zero ? one : score; // it is the phrase
        std::memcpy(scores + at, &score, sizeof(score));
    }
}

[[gnu::always_inline]] inline void scoreAll(std::span<const LaneBlock> blocks, const LaneQuery& query,
                                            double* scores) {
    for (std::size_t index = 0; index < blocks.size(); ++index) {
        const LaneBlock& block = blocks[index];
        double* const slots = scores + block.firstSlot;
        switch (block.laneBits()) {
        case 16: scoreBlock<std::uint16_t>(block, index, query, slots); break;
        case 32: scoreBlock<std::uint32_t>(block, index, query, slots); break;
        default: scoreBlock<std::uint64_t>(block, index, query, slots); break;
        }
    }
}

#if defined(__x86_64__)
/// For machines whose vectors are as wide as a block. AVX2 without FMA: fused multiplication rounds
/// otherwise.
[[gnu::target("avx2")]] void scoreWide(std::span<const LaneBlock> blocks, const LaneQuery& query,
                                       double* scores) {
    scoreAll(blocks, query, scores);
}
#endif

} // namespace

void scoreLanesNarrow(std::span<const LaneBlock> blocks, const LaneQuery& query, std::span<double> scores) {
    scoreAll(blocks, query, scores.data());
}

void scoreLanes(std::span<const LaneBlock> blocks, const LaneQuery& query, std::span<double> scores) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) return scoreWide(blocks, query, scores.data());
#endif
    scoreLanesNarrow(blocks, query, scores);
}

} // namespace lumnara
