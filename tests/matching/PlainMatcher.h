#pragma once

#include "core/matching/Candidate.h"
#include "core/matching/MatchContext.h"
#include "core/matching/MatchOutcome.h"
#include "core/matching/MatcherTuning.h"
#include "tests/text/PlainText.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

/// The rules of matching read plainly: whole tables, strings of characters, every phrase made canonical at
/// each use. What core/matching answers has to be this, to the last bit.
namespace lumnara::testing::plain {

using Text = std::vector<std::string>; // characters

inline std::string joined(const Text& characters) {
    std::string out;
    for (const std::string& character : characters) out += character;
    return out;
}

inline std::vector<Text> wordsOf(const Text& characters) {
    std::vector<Text> words(1);
    for (const std::string& character : characters) {
        if (character == " ") {
            words.emplace_back();
        } else {
            words.back().push_back(character);
        }
    }
    std::erase_if(words, [](const Text& word) { return word.empty(); });
    return words;
}

inline std::optional<long long> integer(const std::string& text) {
    long long value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || rest != end) return std::nullopt;
    return value;
}

struct Vocabulary {
    std::map<std::string, int> cardinals, ordinals, tens;
    std::set<std::string> homophones{"to", "too", "for", "won", "ate"};

    Vocabulary() {
        const auto count = [](std::map<std::string, int>& words, int value, int step, const char* list) {
            for (std::string rest = list; !rest.empty(); value += step) {
                const std::size_t end = std::min(rest.find(' '), rest.size());
                words[rest.substr(0, end)] = value;
                rest.erase(0, end + 1);
            }
        };
        count(cardinals, 0, 1,
              "zero one two three four five six seven eight nine ten eleven twelve thirteen fourteen fifteen "
              "sixteen seventeen eighteen nineteen twenty");
        count(cardinals, 2, 0, "to too");
        count(cardinals, 4, 0, "for");
        count(cardinals, 1, 0, "won");
        count(cardinals, 8, 0, "ate");
        count(ordinals, 1, 1,
              "first second third fourth fifth sixth seventh eighth ninth tenth eleventh twelfth thirteenth "
              "fourteenth fifteenth sixteenth seventeenth eighteenth nineteenth twentieth");
        count(ordinals, 1, 1, "1st 2nd 3rd 4th 5th 6th 7th 8th 9th 10th");
        count(tens, 20, 10, "twenty thirty forty fifty sixty seventy eighty ninety");
    }
    static const Vocabulary& shared() {
        static const Vocabulary vocabulary;
        return vocabulary;
    }
};

inline std::optional<int> find(const std::map<std::string, int>& words, const std::string& word) {
    const auto found = words.find(word);
    return found == words.end() ? std::nullopt : std::optional(found->second);
}

inline std::string canonical(std::string_view text) {
    const Vocabulary& known = Vocabulary::shared();
    std::vector<std::string> in, out;
    for (const Text& word : wordsOf(characters(normalize(text)))) in.push_back(joined(word));
    const auto isUnit = [](auto value) { return value && *value >= 1 && *value <= 9; };
    for (std::size_t i = 0; i < in.size(); ++i) {
        if (const auto ten = find(known.tens, in[i])) {
            int sum = *ten;
            if (i + 1 < in.size()) {
                const std::string& next = in[i + 1];
                const auto cardinal = find(known.cardinals, next), ordinal = find(known.ordinals, next);
                const auto decimal = integer(next);
                if (isUnit(cardinal) && !known.homophones.contains(next)) {
                    sum += *cardinal;
                } else if (isUnit(ordinal)) {
                    sum += *ordinal;
                } else if (isUnit(decimal)) {
                    sum += static_cast<int>(*decimal);
                }
            }
            if (sum != *ten) ++i;
            out.push_back(std::to_string(sum));
        } else if (const auto ordinal = find(known.ordinals, in[i])) {
            out.push_back(std::to_string(*ordinal));
        } else if (const auto cardinal = find(known.cardinals, in[i]);
                   cardinal && (in.size() == 1 || !known.homophones.contains(in[i]))) {
            out.push_back(std::to_string(*cardinal));
        } else {
            out.push_back(in[i]);
        }
    }
    std::string result;
    for (const std::string& word : out) result += result.empty() ? word : " " + word;
    return result;
}

inline bool begins(const Text& text, const Text& beginning) {
    return text.size() >= beginning.size() && std::equal(beginning.begin(), beginning.end(), text.begin());
}

inline bool ends(const Text& text, const Text& ending) {
    return text.size() >= ending.size() && std::equal(ending.rbegin(), ending.rend(), text.rbegin());
}

inline std::string stripFiller(const std::string& canonicalText) {
    const char* const longestFirst[] = {"switch over to", "take me to", "switch to", "jump to", "move to",
                                        "open up",        "show me",    "desktop",   "screen",  "please",
                                        "go to",          "space",      "open",      "show",    "the"};
    Text text = characters(canonicalText);
    for (bool changed = true; changed;) {
        changed = false;
        for (const std::string filler : longestFirst) {
            if (text == characters(filler)) return "";
            if (!begins(text, characters(filler + " "))) continue;
            text.erase(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(filler.size() + 1));
            changed = true;
        }
    }
    for (const std::string target : {" desktop", " space", " screen"}) {
        if (ends(text, characters(target))) text.resize(text.size() - target.size());
    }
    return trimmed(joined(text));
}

inline std::optional<long long> parseNumber(const std::string& text) {
    const std::string digits = trimmed(text);
    for (const std::string& character : characters(digits)) {
        if (u_getNumericValue(decoded(character).char32At(0)) == U_NO_NUMERIC_VALUE) return std::nullopt;
    }
    return integer(digits);
}

inline int distance(const Text& a, const Text& b) {
    std::vector<std::vector<int>> d(a.size() + 1, std::vector<int>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = static_cast<int>(i);
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = static_cast<int>(j);
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const int change = a[i - 1] == b[j - 1] ? 0 : 1;
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + change});
            if (i >= 2 && j >= 2 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
            }
        }
    }
    return d[a.size()][b.size()];
}

inline double distanceRatio(const Text& a, const Text& b) {
    const std::size_t m = std::max(a.size(), b.size());
    return m == 0 ? 1.0 : 1.0 - static_cast<double>(distance(a, b)) / static_cast<double>(m);
}

inline double jaroWinkler(const Text& a, const Text& b) {
    if (a.empty()) return b.empty() ? 1.0 : 0.0;
    if (b.empty()) return 0.0;
    const int la = static_cast<int>(a.size()), lb = static_cast<int>(b.size());
    const int longer = std::max(la, lb), w = longer < 2 ? 0 : longer / 2 - 1;
    const auto at = [](const Text& text, int i) { return text[static_cast<std::size_t>(i)]; };
    std::set<int> inA, inB;
    for (int i = 0; i < la; ++i) {
        for (int j = std::max(0, i - w); j <= std::min(i + w, lb - 1); ++j) {
            if (inB.contains(j) || at(a, i) != at(b, j)) continue;
            inA.insert(i);
            inB.insert(j);
            break;
        }
    }
    if (inA.empty()) return 0.0;
    int t = 0;
    for (auto i = inA.begin(), j = inB.begin(); i != inA.end(); ++i, ++j) t += at(a, *i) != at(b, *j);
    const double m = static_cast<double>(inA.size());
    const double jaro = (m / la + m / lb + (m - 0.5 * t) / m) / 3.0;
    int l = 0;
    while (l < 4 && l < la && l < lb && at(a, l) == at(b, l)) ++l;
    return jaro + (l * 0.1) * (1.0 - jaro);
}

inline double tokenOverlap(const Text& a, const Text& b) {
    const std::vector<Text> wordsA = wordsOf(a), wordsB = wordsOf(b);
    const std::set<Text> x(wordsA.begin(), wordsA.end()), y(wordsB.begin(), wordsB.end());
    if (x.empty() && y.empty()) return 0.0;
    std::size_t both = 0;
    for (const Text& word : x) both += y.count(word);
    return static_cast<double>(both) / static_cast<double>(std::max(x.size(), y.size()));
}

inline double phraseScore(const Text& q, const Text& p, bool isFilter) {
    if (q.empty() || p.empty()) return 0.0;
    if (q == p) return 1.0;
    const double base = std::max({tokenOverlap(q, p) * 0.95, jaroWinkler(q, p), distanceRatio(q, p)});
    bool prefix = begins(p, q);
    for (const Text& word : wordsOf(p)) prefix = prefix || begins(word, q);
    if (!prefix || q.size() < (isFilter ? 1u : 3u)) return std::min(base, 1.0);
    return std::min(base + (isFilter ? MatcherTuning::filterPrefixBonus : MatcherTuning::voicePrefixBonus),
                    1.0);
}

inline double candidateScore(const std::string& q, const Candidate& candidate, bool isFilter) {
    std::optional<double> best;
    for (const std::string& phrase : candidate.phrases) {
        const double score = phraseScore(characters(q), characters(canonical(phrase)), isFilter);
        best = std::max(best.value_or(score), score);
    }
    return best.value_or(0.0);
}

inline bool sameDisplay(const DisplayID& a, const DisplayID& b) { return fold(a.uuid) == fold(b.uuid); }

inline int displayRank(const DisplayID& display, const MatchContext& context,
                       const std::vector<Candidate>& candidates) {
    if (context.cursorDisplay && sameDisplay(*context.cursorDisplay, display)) return 0;
    if (context.menuBarDisplay && sameDisplay(*context.menuBarDisplay, display)) return 1;
    std::vector<DisplayID> seen;
    for (const Candidate& candidate : candidates) {
        if (sameDisplay(candidate.display, display)) return static_cast<int>(seen.size()) + 2;
        const auto isSame = [&](const DisplayID& other) { return sameDisplay(other, candidate.display); };
        if (std::ranges::none_of(seen, isSame)) seen.push_back(candidate.display);
    }
    return 2;
}

/// A candidate's position, what orders it, and its score.
struct Ranked {
    std::size_t position = 0;
    int display = 0;
    double score = 0;
};

/// Insertion keeps the order of equals.
template <class Less> void insertionSort(std::vector<Ranked>& list, Less less) {
    for (std::size_t i = 1; i < list.size(); ++i) {
        for (std::size_t k = i; k > 0 && less(list[k], list[k - 1]); --k) std::swap(list[k], list[k - 1]);
    }
}

inline std::vector<Ranked> unranked(const std::vector<Candidate>& candidates, const MatchContext& context) {
    std::vector<Ranked> list;
    std::map<std::string, int> ranks;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const auto [rank, isNew] = ranks.try_emplace(fold(candidates[i].display.uuid));
        if (isNew) rank->second = displayRank(candidates[i].display, context, candidates);
        list.push_back({i, rank->second, 1.0});
    }
    return list;
}

inline std::vector<Ranked> rank(const std::string& q, const std::vector<Candidate>& candidates,
                                const MatchContext& context) {
    std::vector<Ranked> list = unranked(candidates, context);
    for (Ranked& one : list) {
        one.score = candidateScore(q, candidates[one.position], context.mode == MatchContext::Mode::filter);
    }
    insertionSort(list, [&](const Ranked& a, const Ranked& b) {
        if (a.score != b.score) return a.score > b.score;
        if (a.display != b.display) return a.display < b.display;
        return candidates[a.position].indexOnDisplay < candidates[b.position].indexOnDisplay;
    });
    return list;
}

inline std::vector<Ranked> nearestFirst(const std::vector<Candidate>& candidates,
                                        const MatchContext& context) {
    std::vector<Ranked> list = unranked(candidates, context);
    insertionSort(list, [](const Ranked& a, const Ranked& b) { return a.display < b.display; });
    return list;
}

inline std::vector<Ranked> filter(std::string_view query, const std::vector<Candidate>& candidates,
                                  const MatchContext& context) {
    const std::string q = canonical(query);
    std::vector<Ranked> list = nearestFirst(candidates, context);
    if (q.empty()) return list;
    const auto number = parseNumber(q);
    const auto isCalled = [&](const Ranked& one) {
        const auto& own = candidates[one.position].userNumber;
        return number && own && *own == *number;
    };
    std::erase_if(list, [&](const Ranked& one) { return !isCalled(one); });
    for (const Ranked& one : rank(q, candidates, context)) {
        if (one.score >= MatcherTuning::filterThreshold && !isCalled(one)) list.push_back(one);
    }
    return list;
}

inline std::optional<VoiceCommand> parseCommand(const std::string& canonicalText) {
    static const std::map<std::string, VoiceCommand> commands = {
        {"next", VoiceCommand::next},         {"right", VoiceCommand::next},
        {"go right", VoiceCommand::next},     {"forward", VoiceCommand::next},
        {"previous", VoiceCommand::previous}, {"left", VoiceCommand::previous},
        {"go left", VoiceCommand::previous},  {"prev", VoiceCommand::previous},
        {"backward", VoiceCommand::previous}, {"back", VoiceCommand::back},
        {"go back", VoiceCommand::back},      {"jump back", VoiceCommand::back},
        {"last", VoiceCommand::back},         {"go to last", VoiceCommand::back}};
    const std::function<std::optional<VoiceCommand>(Text, std::set<std::string>)> look =
        [&](Text text, std::set<std::string> endings) -> std::optional<VoiceCommand> {
        if (const auto found = commands.find(joined(text)); found != commands.end()) return found->second;
        for (const std::string& ending : endings) {
            if (!ends(text, characters(ending))) continue;
            text.resize(text.size() - ending.size());
            std::set<std::string> others = endings;
            others.erase(ending);
            return look(text, others);
        }
        return std::nullopt;
    };
    return look(characters(canonicalText), {" desktop", " space", " screen", " one"});
}

inline MatchOutcome match(std::string_view transcript, const std::vector<Candidate>& candidates,
                          const MatchContext& context) {
    const MatchOutcome keepListening{MatchOutcome::KeepListening{}};
    const auto nothing = [&](double best) {
        return context.isPartial ? keepListening : MatchOutcome{MatchOutcome::None{best}};
    };
    const std::string c = canonical(transcript);
    if (const auto command = parseCommand(c)) return {MatchOutcome::Command{*command}};
    const std::string t = stripFiller(c);
    if (const auto n = parseNumber(t)) {
        for (const Candidate& candidate : candidates) {
            if (!context.isPartial || !candidate.userNumber || *candidate.userNumber <= *n) continue;
            const long long u = *candidate.userNumber;
            if (*n * 10 <= u && u <= *n * 10 + 9) return keepListening;
            if (*n >= 20 && *n % 10 == 0 && *n + 1 <= u && u <= *n + 9) return keepListening;
        }
        for (const Ranked& one : nearestFirst(candidates, context)) {
            const auto& number = candidates[one.position].userNumber;
            if (number && *number == *n) return {MatchOutcome::Accepted{candidates[one.position], 1.0}};
        }
        return nothing(0.0);
    }
    if (characters(t).size() < 2) return nothing(0.0);
    const std::vector<Ranked> r = rank(t, candidates, context);
    if (r.empty()) return nothing(0.0);

    const auto phrases = [&](const Ranked& one) {
        std::set<std::string> set;
        for (const std::string& phrase : candidates[one.position].phrases) set.insert(canonical(phrase));
        return set;
    };
    const std::set<std::string> own = phrases(r.front());
    std::vector<Ranked> left{r.front()};
    for (std::size_t i = 1; i < r.size(); ++i) {
        bool shares = false;
        if (r[i].score >= r.front().score) {
            for (const std::string& phrase : phrases(r[i])) shares = shares || own.contains(phrase);
        }
        if (!shares) left.push_back(r[i]);
    }
    const double b = left[0].score, s = left.size() > 1 ? left[1].score : 0.0;
    const MatchOutcome accepted{MatchOutcome::Accepted{candidates[left[0].position], b}};
    if (b < MatcherTuning::acceptThreshold) return nothing(b);
    if (left.size() > 1 && b - s < MatcherTuning::ambiguityMargin && b < MatcherTuning::exactScore) {
        MatchOutcome::Ambiguous ambiguous;
        for (std::size_t i = 0; i < left.size() && i < 3; ++i) {
            ambiguous.candidates.push_back(candidates[left[i].position]);
        }
        return context.isPartial ? keepListening : MatchOutcome{ambiguous};
    }
    if (!context.isPartial) return accepted;
    const bool early = b >= MatcherTuning::earlyAcceptThreshold && b - s >= MatcherTuning::earlyAcceptMargin;
    return early ? accepted : keepListening;
}

} // namespace lumnara::testing::plain
