#include "core/matching/FuzzyMatcher.h"
#include "core/text/Text.h"
#include "tests/matching/MatcherComparison.h"
#include "tests/text/RandomText.h"

#include <cmath>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

using testing::RandomText;
using testing::TuningGuard;

const DisplayID left{"AAAA-1"}, right{"BBBB-2"};

Candidate desktop(std::string key, std::vector<std::string> phrases, DisplayID display = left, int index = 0,
                  std::optional<int> number = std::nullopt) {
    return {std::move(key), std::move(display), index, number, std::move(phrases)};
}

MatchContext heard(bool isPartial = false) {
    return {DisplayID{"bbbb-2"}, std::nullopt, isPartial, MatchContext::Mode::voice};
}
MatchContext typed() { return {std::nullopt, std::nullopt, false, MatchContext::Mode::filter}; }

/// What a transcript came to, as a word or two.
std::string outcome(std::string_view transcript, const std::vector<Candidate>& candidates,
                    const MatchContext& context) {
    const MatchOutcome result = FuzzyMatcher::match(transcript, candidates, context);
    if (const auto* accepted = result.as<MatchOutcome::Accepted>()) return accepted->candidate.desktopKey;
    if (const auto* ambiguous = result.as<MatchOutcome::Ambiguous>()) {
        std::string keys = "either";
        for (const Candidate& candidate : ambiguous->candidates) keys += " " + candidate.desktopKey;
        return keys;
    }
    if (result.as<MatchOutcome::None>()) return "none";
    if (result.as<MatchOutcome::Command>()) return "command";
    return "listening";
}

std::string listed(std::string_view query, const std::vector<Candidate>& candidates,
                   const MatchContext& context) {
    std::string keys;
    for (const ScoredCandidate& one : FuzzyMatcher::filter(query, candidates, context)) {
        keys += (keys.empty() ? "" : " ") + one.candidate.desktopKey;
    }
    return keys;
}

TEST(FuzzyMatcher, KnowsCommandsWithAndWithoutAWordBehindThem) {
    const std::pair<const char*, std::optional<VoiceCommand>> cases[] = {
        {"next", VoiceCommand::next},
        {"next one", VoiceCommand::next},
        {"next desktop one", VoiceCommand::next},
        {"next one desktop", VoiceCommand::next},
        {"go left space", VoiceCommand::previous},
        {"previous screen", VoiceCommand::previous},
        {"backward", VoiceCommand::previous},
        {"last", VoiceCommand::back},
        {"go to last desktop", VoiceCommand::back},
        {"please next", std::nullopt},
        {"go next", std::nullopt},
        {"next one one", std::nullopt},
        {"one", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, command] : cases) EXPECT_EQ(FuzzyMatcher::parseCommand(text), command) << text;
    EXPECT_EQ(outcome("Jump Back!", {}, heard()), "command");
    EXPECT_EQ(outcome("Jump Back!", {}, heard(true)), "command");
}

TEST(FuzzyMatcher, ScoresAPhrase) {
    EXPECT_EQ(FuzzyMatcher::phraseScore("", "a", true), 0.0);
    EXPECT_EQ(FuzzyMatcher::phraseScore("a", "", true), 0.0);
    EXPECT_EQ(FuzzyMatcher::phraseScore("mail", "mail", false), 1.0);
    // A beginning of any word earns the bonus: one character when typed, three when spoken.
    const double typedOne = FuzzyMatcher::phraseScore("a", "alpha", true);
    const double spokenOne = FuzzyMatcher::phraseScore("a", "alpha", false);
    EXPECT_DOUBLE_EQ(typedOne - spokenOne, MatcherTuning::filterPrefixBonus);
    EXPECT_GT(FuzzyMatcher::phraseScore("rev", "design review", false),
              FuzzyMatcher::phraseScore("rew", "design review", false));
    EXPECT_LE(FuzzyMatcher::phraseScore("design", "design review", true), 1.0);
    EXPECT_EQ(FuzzyMatcher::candidateScore("mail", desktop("m", {}), true), 0.0);
    EXPECT_EQ(FuzzyMatcher::candidateScore("22", desktop("m", {"x", "Twenty-Two"}), true), 1.0);
}

TEST(FuzzyMatcher, NearsDisplays) {
    const MatchContext context{right, left, false, MatchContext::Mode::voice};
    const std::vector<DisplayID> displays = {left, right, {"third"}};
    EXPECT_EQ(FuzzyMatcher::displayRank({"bbbb-2"}, context, displays), 0);
    EXPECT_EQ(FuzzyMatcher::displayRank({"aaaa-1"}, context, displays), 1);
    EXPECT_EQ(FuzzyMatcher::displayRank({"THIRD"}, context, displays), 4);
    EXPECT_EQ(FuzzyMatcher::displayRank({"gone"}, context, displays), 2);
}

TEST(FuzzyMatcher, GoesToNumbers) {
    const std::vector<Candidate> desktops = {
        desktop("one", {"Mail"}, left, 0, 1),       desktop("three", {"Code"}, left, 2, 3),
        desktop("twelve", {"Chat"}, left, 3, 12),   desktop("near three", {"Notes"}, right, 2, 3),
        desktop("twenty", {"Music"}, right, 4, 20), desktop("twenty-three", {"Draft"}, right, 5, 23)};
    EXPECT_EQ(outcome("desktop 3", desktops, heard()), "near three");
    EXPECT_EQ(outcome("take me to three", desktops, heard(true)), "near three");
    EXPECT_EQ(outcome("one", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("one", desktops, heard()), "one");
    EXPECT_EQ(outcome("twenty", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("twenty", desktops, heard()), "twenty");
    EXPECT_EQ(outcome("twenty three", desktops, heard(true)), "twenty-three");
    EXPECT_EQ(outcome("seven", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("seven", desktops, heard()), "none");
    EXPECT_EQ(outcome("9223372036854775807", desktops, heard(true)), "listening");
    EXPECT_EQ(listed("3", desktops, typed()).substr(0, 16), "three near three");
}

TEST(FuzzyMatcher, DecidesOnNames) {
    const std::vector<Candidate> desktops = {
        desktop("design", {"Design"}, left, 0), desktop("near design", {"Design", "UI"}, right, 0),
        desktop("work one", {"Work One"}, left, 1), desktop("work two", {"Work Two"}, left, 2),
        desktop("invoices", {"Invoices 2026"}, left, 3)};
    EXPECT_EQ(outcome("design", desktops, heard()), "near design"); // a namesake is no ambiguity
    EXPECT_EQ(outcome("go to design", desktops, heard(true)), "near design");
    EXPECT_EQ(outcome("work", desktops, heard()), "either work one work two invoices"); // three, near or not
    EXPECT_EQ(outcome("work", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("envoices 2026", desktops, heard()), "invoices");
    EXPECT_EQ(outcome("zzqq", desktops, heard()), "none");
    EXPECT_EQ(outcome("zzqq", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("go to", desktops, heard()), "none");
    EXPECT_EQ(outcome("go to", desktops, heard(true)), "listening");
    EXPECT_EQ(outcome("x", desktops, heard()), "none");

    // Two names for one thing on different desktops: both exact, the nearer one wins.
    const std::vector<Candidate> unrelated = {desktop("far", {"Mail", "Post"}, left),
                                              desktop("near", {"Mail", "Brief"}, right)};
    EXPECT_EQ(outcome("mail", unrelated, heard()), "near");
}

TEST(FuzzyMatcher, HoldsToItsThresholds) {
    const TuningGuard guard;
    const std::vector<Candidate> desktops = {desktop("top", {"design review"}),
                                             desktop("second", {"resign"})};
    const auto ranked = FuzzyMatcher::rank("desig review", desktops, heard());
    const double top = ranked[0].score, margin = top - ranked[1].score;
    const auto decided = [&](bool isPartial) { return outcome("desig review", desktops, heard(isPartial)); };

    MatcherTuning::acceptThreshold = top;
    EXPECT_EQ(decided(false), "top");
    MatcherTuning::acceptThreshold = std::nextafter(top, 1.0);
    EXPECT_EQ(decided(false), "none");
    EXPECT_EQ(decided(true), "listening");

    MatcherTuning::acceptThreshold = 0.5;
    MatcherTuning::ambiguityMargin = margin;
    MatcherTuning::earlyAcceptThreshold = top;
    MatcherTuning::earlyAcceptMargin = margin;
    EXPECT_EQ(decided(false), "top");
    EXPECT_EQ(decided(true), "top");
    MatcherTuning::earlyAcceptMargin = std::nextafter(margin, 1.0);
    EXPECT_EQ(decided(true), "listening");
    EXPECT_EQ(decided(false), "top");
    MatcherTuning::ambiguityMargin = std::nextafter(margin, 1.0);
    EXPECT_EQ(decided(false), "either top second");
    MatcherTuning::exactScore = top;
    EXPECT_EQ(decided(false), "top");

    MatcherTuning::filterThreshold = std::nextafter(1.0, 2.0);
    EXPECT_EQ(listed("design review", desktops, typed()), "");
    MatcherTuning::filterThreshold = 1.0;
    EXPECT_EQ(listed("design review", desktops, typed()), "top");
}

TEST(FuzzyMatcher, ListsForTheBoard) {
    const std::vector<Candidate> desktops = {
        desktop("b", {"Beta"}, left, 1), desktop("a", {"Alpha"}, left, 0), desktop("r", {"Alpha"}, right, 0)};
    MatchContext context = typed();
    EXPECT_EQ(listed("  ", desktops, context), "b a r");
    EXPECT_EQ(listed("alp", desktops, context), "a r");
    context.menuBarDisplay = right;
    EXPECT_EQ(listed("...", desktops, context), "r b a");
    EXPECT_EQ(listed("alp", desktops, context), "r a");
    EXPECT_EQ(listed("alp", {}, context), "");
    for (const ScoredCandidate& all : FuzzyMatcher::filter("", desktops, context)) EXPECT_EQ(all.score, 1.0);
}

TEST(FuzzyMatcher, FindsNothingInAnEmptyList) {
    for (const char* transcript : {"3", "mail"}) {
        EXPECT_EQ(outcome(transcript, {}, heard()), "none");
        EXPECT_EQ(outcome(transcript, {}, heard(true)), "listening");
    }
}

/// Lists and queries that share their characters, their words and their beginnings.
class Scenes {
public:
    explicit Scenes(unsigned seed) : random_(seed) {}

    std::vector<Candidate> candidates() {
        std::vector<Candidate> made;
        for (unsigned left = random_.below(12); left > 0; --left) {
            Candidate candidate;
            candidate.desktopKey = std::to_string(left);
            candidate.display.uuid = std::string(1, "aAbBc"[random_.below(5)]);
            candidate.indexOnDisplay = static_cast<int>(random_.below(4)) - 1;
            if (random_.chance(60)) candidate.userNumber = static_cast<int>(random_.below(26));
            for (unsigned phrases = random_.below(4); phrases > 0; --phrases) {
                candidate.phrases.push_back(phrase());
            }
            made.push_back(std::move(candidate));
        }
        return made;
    }

    /// A phrase, a beginning of one, one with faults, or anything.
    std::string query(const std::vector<Candidate>& candidates) {
        std::string text = phrase();
        if (!candidates.empty() && random_.chance(80)) {
            const Candidate& near = candidates[random_.below(static_cast<unsigned>(candidates.size()))];
            if (!near.phrases.empty()) text = near.phrases.front();
        }
        if (random_.chance(30)) text.resize(random_.below(static_cast<unsigned>(text.size() + 1)));
        if (random_.chance(30) && text.size() > 2) {
            std::swap(text[text.size() / 2], text[text.size() / 2 - 1]);
        }
        if (random_.chance(20)) text += random_.text(4);
        if (random_.chance(20)) text = "go to " + text;
        if (random_.chance(10)) text = std::to_string(random_.below(25));
        return text;
    }

    MatchContext context() {
        MatchContext made;
        if (random_.chance(50)) made.cursorDisplay = DisplayID{random_.chance(50) ? "a" : "B"};
        if (random_.chance(50)) made.menuBarDisplay = DisplayID{random_.chance(50) ? "C" : "x"};
        return made;
    }

    RandomText& random() { return random_; }

private:
    std::string phrase() {
        static const char* const words[] = {"mail",   "Mail",   "male", "design", "desing",  "review",
                                            "two",    "twenty", "a",    "aa",     "desktop", "日本語",
                                            "проект", "हिन्दी",  "café", "21"};
        std::string text;
        const unsigned most = random_.chance(5) ? 30 : 4; // some are longer than any lane
        for (unsigned left = random_.below(most); left > 0; --left) {
            text += random_.chance(75) ? words[random_.below(std::size(words))] : random_.text(8);
            text += random_.chance(80) ? " " : "";
        }
        return text;
    }

    RandomText random_;
};

TEST(FuzzyMatcher, AgreesWithThePlainReading) {
    const TuningGuard guard;
    for (unsigned seed = 0; seed < 80; ++seed) {
        Scenes scenes(seed);
        const auto unit = [&] { return scenes.random().below(1001) / 1000.0; };
        if (seed % 5 == 4) {
            MatcherTuning::acceptThreshold = unit();
            MatcherTuning::ambiguityMargin = unit() / 4;
            MatcherTuning::earlyAcceptThreshold = unit();
            MatcherTuning::earlyAcceptMargin = unit() / 4;
            MatcherTuning::filterThreshold = unit();
            MatcherTuning::voicePrefixBonus = unit() - 0.6;
            MatcherTuning::filterPrefixBonus = unit() - 0.6;
        }
        const std::vector<Candidate> candidates = scenes.candidates();
        for (int i = 0; i < 4; ++i) {
            const std::string text = scenes.query(candidates);
            ASSERT_EQ(testing::difference(text, candidates, scenes.context()), "") << seed << ": " << text;
        }
    }
}

TEST(FuzzyMatcher, AgreesWithThePlainReadingAtEveryLength) {
    const std::string pattern = "ab bca cab é ac文 ba c";
    std::string longest;
    while (longest.size() < 400) longest += pattern;
    std::vector<Candidate> candidates;
    for (const std::size_t length : {1, 2, 15, 16, 17, 31, 32, 33, 63, 64, 65, 70}) {
        const std::string phrase(text::first(std::string_view(longest).substr(length % 7), length));
        candidates.push_back(desktop(std::to_string(length), {phrase}));
    }
    for (const std::size_t length : {1, 2, 16, 17, 32, 33, 63, 64, 65, 256, 257}) {
        const std::string query(text::first(longest, length));
        ASSERT_EQ(testing::difference(query, candidates, typed()), "") << length;
    }
}

} // namespace
} // namespace lumnara
