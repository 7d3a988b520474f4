#include "core/matching/Normalizer.h"

#include "core/matching/Words.h"
#include "core/text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace lumnara::Normalizer {
namespace {

constexpr NumberWord cardinalWords[] = {
    {"zero", 0},      {"one", 1},       {"two", 2},       {"three", 3},    {"four", 4},     {"five", 5},
    {"six", 6},       {"seven", 7},     {"eight", 8},     {"nine", 9},     {"ten", 10},     {"eleven", 11},
    {"twelve", 12},   {"thirteen", 13}, {"fourteen", 14}, {"fifteen", 15}, {"sixteen", 16}, {"seventeen", 17},
    {"eighteen", 18}, {"nineteen", 19}, {"twenty", 20},   {"to", 2},       {"too", 2},      {"for", 4},
    {"won", 1},       {"ate", 8},
};

constexpr NumberWord ordinalWords[] = {
    {"first", 1},      {"second", 2},       {"third", 3},       {"fourth", 4},      {"fifth", 5},
    {"sixth", 6},      {"seventh", 7},      {"eighth", 8},      {"ninth", 9},       {"tenth", 10},
    {"eleventh", 11},  {"twelfth", 12},     {"thirteenth", 13}, {"fourteenth", 14}, {"fifteenth", 15},
    {"sixteenth", 16}, {"seventeenth", 17}, {"eighteenth", 18}, {"nineteenth", 19}, {"twentieth", 20},
    {"1st", 1},        {"2nd", 2},          {"3rd", 3},         {"4th", 4},         {"5th", 5},
    {"6th", 6},        {"7th", 7},          {"8th", 8},         {"9th", 9},         {"10th", 10},
};

constexpr NumberWord tensWords[] = {
    {"twenty", 20}, {"thirty", 30},  {"forty", 40},  {"fifty", 50},
    {"sixty", 60},  {"seventy", 70}, {"eighty", 80}, {"ninety", 90},
};

/// What speech recognition writes in place of a digit; numbers only when they are all that was heard.
constexpr std::string_view homophones[] = {"to", "too", "for", "won", "ate"};

constexpr std::string_view fillerWords[] = {
    "take me to", "switch over to", "switch to", "jump to", "go to",  "move to", "open up", "open",
    "show me",    "show",           "desktop",   "space",   "screen", "the",     "please",
};

constexpr std::string_view targetWords[] = {" desktop", " space", " screen"};

/// What a word means as a number.
struct Meaning {
    std::optional<int> tens;
    std::optional<int> ordinal;
    std::optional<int> cardinal;
    bool homophone = false;
};

const Meaning* meaningOf(std::string_view word) {
    static const std::unordered_map<std::string_view, Meaning> meanings = [] {
        std::unordered_map<std::string_view, Meaning> made;
        for (const auto& [word, value] : tensWords) made[word].tens = value;
        for (const auto& [word, value] : ordinalWords) made[word].ordinal = value;
        for (const auto& [word, value] : cardinalWords) made[word].cardinal = value;
        for (const std::string_view word : homophones) made[word].homophone = true;
        return made;
    }();
    constexpr std::size_t longest = std::string_view("seventeenth").size();
    if (word.size() > longest) return nullptr;
    const auto found = meanings.find(word);
    return found == meanings.end() ? nullptr : &found->second;
}

std::optional<std::int64_t> decimal(std::string_view digits) {
    std::int64_t value = 0;
    const bool plain = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
    const char* end = digits.data() + digits.size();
    if (digits.empty() || !plain || std::from_chars(digits.data(), end, value).ec != std::errc{}) return {};
    return value;
}

/// The digit that completes a tens word: "two", "second" or "2" behind "twenty".
std::optional<int> unit(std::string_view word) {
    const auto inRange = [](std::int64_t value) { return value >= 1 && value <= 9; };
    if (const Meaning* meaning = meaningOf(word)) {
        if (meaning->cardinal && !meaning->homophone && inRange(*meaning->cardinal)) return meaning->cardinal;
        if (meaning->ordinal && inRange(*meaning->ordinal)) return meaning->ordinal;
    }
    if (const auto value = decimal(word); value && inRange(*value)) return static_cast<int>(*value);
    return {};
}

void appendWord(std::string& out, std::string_view word) {
    if (!out.empty()) out += ' ';
    out += word;
}

void appendNumber(std::string& out, int value) { appendWord(out, std::to_string(value)); }

const std::vector<std::string_view>& fillersLongestFirst() {
    static const std::vector<std::string_view> sorted = [] {
        std::vector<std::string_view> made;
        for (std::size_t size = std::string_view("switch over to").size(); size > 0; --size) {
            std::ranges::copy_if(fillerWords, std::back_inserter(made),
                                 [&](std::string_view filler) { return filler.size() == size; });
        }
        return made;
    }();
    return sorted;
}

} // namespace

std::span<const NumberWord> cardinals() { return cardinalWords; }
std::span<const NumberWord> ordinals() { return ordinalWords; }
std::span<const NumberWord> tens() { return tensWords; }
std::span<const std::string_view> fillers() { return fillerWords; }

std::string normalize(std::string_view text) { return text::normalize(text); }

void canonical(std::string_view text, std::string& out) {
    thread_local std::string normalized;
    thread_local std::vector<std::string_view> words;
    text::normalize(text, normalized);
    splitWords(normalized, words);

    out.clear();
    for (std::size_t i = 0; i < words.size(); ++i) {
        const Meaning* meaning = meaningOf(words[i]);
        if (!meaning) {
            appendWord(out, words[i]);
        } else if (meaning->tens) {
            const auto digit = i + 1 < words.size() ? unit(words[i + 1]) : std::nullopt;
            appendNumber(out, *meaning->tens + digit.value_or(0));
            if (digit) ++i;
        } else if (meaning->ordinal) {
            appendNumber(out, *meaning->ordinal);
        } else if (meaning->homophone && words.size() != 1) {
            appendWord(out, words[i]);
        } else {
            appendNumber(out, *meaning->cardinal);
        }
    }
}

std::string canonical(std::string_view text) {
    std::string out;
    canonical(text, out);
    return out;
}

std::string stripFiller(std::string_view canonicalText) {
    std::string_view rest = canonicalText;
    for (bool changed = true; changed;) {
        changed = false;
        for (const std::string_view filler : fillersLongestFirst()) {
            if (rest == filler) return {};
            if (!rest.starts_with(filler) || !text::beginsWith(rest.substr(filler.size()), " ")) continue;
            rest.remove_prefix(filler.size() + 1);
            changed = true;
        }
    }
    for (const std::string_view target : targetWords) {
        if (text::endsWith(rest, target)) rest.remove_suffix(target.size());
    }
    return std::string(text::trim(rest));
}

std::optional<std::int64_t> parseNumber(std::string_view text) { return decimal(text::trim(text)); }

} // namespace lumnara::Normalizer
