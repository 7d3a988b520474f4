#include "core/matching/Similarity.h"

#include "core/matching/Characters.h"
#include "core/matching/Measures.h"
#include "core/matching/Words.h"
#include "core/text/Text.h"

#include <algorithm>
#include <set>

namespace lumnara::Similarity {
namespace {

/// Two texts as comparable numbers.
struct Pair {
    Characters a;
    Characters b;

    Pair(std::string_view textA, std::string_view textB) {
        CharacterNumbers numbers;
        numbers.number(text::composed(textA), a);
        numbers.number(text::composed(textB), b);
    }
};

int editDistance(const Characters& a, const Characters& b) {
    std::vector<int> before(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = static_cast<int>(j);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::swap(before, last);
        std::swap(last, row);
        row[0] = static_cast<int>(i);
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int replacement = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replacement});
            const bool swapped = i >= 2 && j >= 2 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row[b.size()];
}

} // namespace

int distance(std::string_view a, std::string_view b) {
    const Pair texts(a, b);
    return editDistance(texts.a, texts.b);
}

double distanceRatio(std::string_view a, std::string_view b) {
    const Pair texts(a, b);
    const std::size_t longer = std::max(texts.a.size(), texts.b.size());
    if (longer == 0) return 1.0;
    return 1.0 - static_cast<double>(editDistance(texts.a, texts.b)) / static_cast<double>(longer);
}

double jaroWinkler(std::string_view textA, std::string_view textB) {
    const Pair texts(textA, textB);
    const Characters& a = texts.a;
    const Characters& b = texts.b;
    if (a.empty() || b.empty()) return a.empty() && b.empty() ? 1.0 : 0.0;

    const std::size_t window =
        static_cast<std::size_t>(Measures::jaroWindow(static_cast<int>(std::max(a.size(), b.size()))));
    std::vector<bool> inB(b.size());
    Characters matchedA, matchedB;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const std::size_t end = std::min(i + window + 1, b.size());
        for (std::size_t j = i < window ? 0 : i - window; j < end; ++j) {
            if (inB[j] || a[i] != b[j]) continue;
            inB[j] = true;
            matchedA.push_back(a[i]);
            break;
        }
    }
    if (matchedA.empty()) return 0.0;
    for (std::size_t j = 0; j < b.size(); ++j) {
        if (inB[j]) matchedB.push_back(b[j]);
    }
    int transposed = 0;
    for (std::size_t k = 0; k < matchedA.size(); ++k) transposed += matchedA[k] != matchedB[k];
    const std::size_t most = std::min({a.size(), b.size(), std::size_t{Measures::longestPrefix}});
    std::size_t prefix = 0;
    while (prefix < most && a[prefix] == b[prefix]) ++prefix;
    return Measures::jaroWinkler<double>(static_cast<double>(a.size()), static_cast<double>(b.size()),
                                         static_cast<double>(matchedA.size()), transposed,
                                         static_cast<double>(prefix));
}

double tokenOverlap(std::string_view a, std::string_view b) {
    const std::string textA = text::composed(a), textB = text::composed(b);
    std::vector<std::string_view> words;
    splitWords(textA, words);
    const std::set<std::string_view> inA(words.begin(), words.end());
    splitWords(textB, words);
    const std::set<std::string_view> inB(words.begin(), words.end());
    if (inA.empty() && inB.empty()) return 0.0;
    const auto shared = std::ranges::count_if(inA, [&](std::string_view word) { return inB.contains(word); });
    return static_cast<double>(shared) / static_cast<double>(std::max(inA.size(), inB.size()));
}

} // namespace lumnara::Similarity
