// What a keystroke in the Board costs: the query made canonical, every phrase scored, the list in order.

#include "bench/Bench.h"
#include "core/matching/FuzzyMatcher.h"
#include "core/text/Text.h"
#include "tests/matching/PlainMatcher.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <numeric>
#include <random>

namespace lumnara::bench {
namespace {

constexpr int rounds = 101;

using Words = std::vector<std::string>;

const Words plainWords = {
    "design",   "review",   "mail",       "calendar",    "budget",    "invoices",    "kernel",   "build",
    "release",  "music",    "photos",     "travel",      "lisbon",    "café",        "research", "thesis",
    "draft",    "notes",    "support",    "customer",    "sprint",    "planning",    "retro",    "standup",
    "frontend", "backend",  "database",   "deploy",      "staging",   "metrics",     "logs",     "chat",
    "video",    "meeting",  "archive",    "reading",     "garden",    "recipes",     "taxes",    "insurance",
    "school",   "homework", "piano",      "fitness",     "übersicht", "project",     "atlas",    "orion",
    "nebula",   "hiring",   "interviews", "roadmap",     "strategy",  "security",    "audit",    "backup",
    "terminal", "editor",   "browser",    "spreadsheet", "slides",    "translation", "podcast",  "studio",
    "camera",   "printer",  "network",    "router",      "cluster",   "simulation"};

const Words otherWords = {"проект", "почта",  "дизайн", "музыка",   "работа", "σχέδιο", "μουσική",  "ταξίδι",
                          "设计",   "邮件",   "数据库", "音乐",     "会议",   "東京",   "デザイン", "メール",
                          "会議室", "디자인", "회의",   "음악",     "עבודה",  "דואר",   "تصميم",    "بريد",
                          "हिन्दी",  "संगीत",   "ไทย",    "İstanbul", "Straße", "naïve"};

/// Desktops with a name and two aliases each. `others` percent of the words are of other scripts.
std::vector<Candidate> desktops(int count, unsigned others) {
    std::mt19937 random(7);
    const auto below = [&](std::size_t limit) { return random() % static_cast<unsigned>(limit); };
    const auto word = [&] {
        const Words& words = below(100) < others ? otherWords : plainWords;
        std::string chosen = words[below(words.size())];
        if (chosen[0] >= 'a' && chosen[0] <= 'z' && below(2) == 0)
            chosen[0] = static_cast<char>(chosen[0] - 32);
        return chosen;
    };
    std::vector<Candidate> made;
    for (int i = 0; i < count; ++i) {
        Candidate candidate{"key " + std::to_string(i), {i % 3 == 0 ? "A" : "B"}, i / 2, i + 1, {}};
        for (int phrase = 0; phrase < 3; ++phrase) {
            std::string text = word();
            for (unsigned more = below(4 - static_cast<unsigned>(phrase)); more > 0; --more)
                text += " " + word();
            if (below(5) == 0) text += " " + std::to_string(below(30));
            candidate.phrases.push_back(text);
        }
        made.push_back(candidate);
    }
    return made;
}

/// What the Board's query holds after each key, for some names typed to their end.
Words keystrokes(bool mixed) {
    Words typed = {"design review", "cafe mail", "ubersicht", "twenty two", "xqz"};
    if (mixed) typed = {"design review", "проект почта", "数据库", "デザイン", "회의", "संगीत", "ubersicht"};
    Words queries;
    for (const std::string& text : typed) {
        for (std::size_t n = 1; n <= text::length(text); ++n) queries.emplace_back(text::first(text, n));
    }
    return queries;
}

/// Over keystrokes, each the median of its rounds, in microseconds.
struct Timing {
    double median = 0;
    double mean = 0;
    double worst = 0;
};

template <class Call> Timing time(const Words& queries, int roundsEach, Call call) {
    std::vector<double> each;
    for (const std::string& query : queries) {
        each.push_back(medianMicroseconds(roundsEach, [&] { call(query); }));
    }
    std::ranges::sort(each);
    const double sum = std::accumulate(each.begin(), each.end(), 0.0);
    return {each[each.size() / 2], sum / static_cast<double>(each.size()), each.back()};
}

std::size_t kept = 0; // keeps the results alive

const MatchContext board{DisplayID{"B"}, std::nullopt, false, MatchContext::Mode::filter};

void requireSame(const Words& queries, const std::vector<Candidate>& candidates, const MatchIndex& index) {
    for (const std::string& query : queries) {
        const auto expected = testing::plain::filter(query, candidates, board);
        const auto hits = FuzzyMatcher::filter(query, index, board);
        const auto same = [](const MatchIndex::Hit& hit, const testing::plain::Ranked& plain) {
            return hit.position == plain.position && hit.score == plain.score;
        };
        if (!std::ranges::equal(hits, expected, same)) throw std::runtime_error("wrong list for " + query);
    }
}

/// What a general fuzzy finder takes for a keystroke beyond starting and ending. Nothing without it.
std::optional<double> finder(const Words& queries, const std::vector<Candidate>& candidates) {
    if (std::system("command -v fzf >/dev/null 2>&1") != 0) return std::nullopt;
    const testing::TemporaryFolder folder;
    const std::string full = (folder.path() / "phrases").string(), none = (folder.path() / "none").string();
    std::ofstream lines(full);
    std::ofstream{none};
    for (const Candidate& candidate : candidates) {
        for (const std::string& phrase : candidate.phrases) lines << phrase << '\n';
    }
    lines.close();
    const auto run = [&](const std::string& query, const std::string& file) {
        const std::string command = "fzf --filter='" + query + "' <" + file + " >/dev/null";
        kept += std::system(command.c_str()) != -1;
    };
    const Timing all = time(queries, 9, [&](const std::string& query) { run(query, full); });
    const Timing empty = time(queries, 9, [&](const std::string& query) { run(query, none); });
    return all.median - empty.median;
}

void addYardsticks(Report& report, const Words& queries, const std::vector<Candidate>& candidates) {
    const Words few = {queries[0], queries[4], queries.back()};
    const Timing plain = time(few, 1, [&](const std::string& query) {
        kept += testing::plain::filter(query, candidates, board).size();
    });
    report.line("  plain reading", plain.mean, "every phrase made canonical, whole tables");

    std::string all;
    for (const Candidate& candidate : candidates) {
        for (const std::string& phrase : candidate.phrases) all += text::normalize(phrase) + "\n";
    }
    const double floor = medianMicroseconds(201, [&] {
        for (std::size_t at = 0; at < all.size();) kept += text::decodeNext(all, at);
    });
    report.line("  floor: read every character", floor);
    if (const auto marginal = finder(few, candidates)) {
        report.line("  fzf --filter, marginal", *marginal, "its process beyond that for an empty list");
    }
}

void measure(Report& report, const std::string& name, int count, bool mixed) {
    const std::vector<Candidate> candidates = desktops(count, mixed ? 40 : 0);
    const Words queries = keystrokes(mixed);
    const MatchIndex index(candidates);
    const Timing timing = time(queries, rounds, [&](const std::string& query) {
        kept += FuzzyMatcher::filter(query, index, board).size();
    });
    report.add(name, timing.median, "median of " + std::to_string(queries.size()) + " keystrokes");
    report.line("  mean", timing.mean);
    report.line("  worst keystroke", timing.worst);
    report.line("  index, built once per catalog",
                medianMicroseconds(15, [&] { kept += MatchIndex(candidates).entries().size(); }));
    if (count > 1000) return;
    requireSame({queries.begin(), queries.begin() + 8}, candidates, index);
    addYardsticks(report, queries, candidates);
}

} // namespace
} // namespace lumnara::bench

int main() {
    using namespace lumnara::bench;
    lumnara::text::warmUp();
    Report report("match");
    measure(report, "keystroke_1000_us", 1000, false);
    measure(report, "keystroke_1000_mixed_us", 1000, true);
    measure(report, "keystroke_10000_us", 10000, false);
    return kept == 0;
}
