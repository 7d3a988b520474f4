#pragma once

#include "core/notes/RichText.h"

#include <iomanip>
#include <ostream>
#include <random>
#include <string>
#include <vector>

namespace lumnara {

/// For the messages of failing tests.
inline std::ostream& operator<<(std::ostream& out, const TextRun& run) {
    const TextStyle& style = run.style;
    out << std::quoted(run.text) << (style.bold ? " bold" : "") << (style.italic ? " italic" : "")
        << (style.underline ? " underline" : "") << (style.strikethrough ? " strike" : "");
    if (style.halfPoints > 0) out << " " << style.halfPoints << "/2 pt";
    if (style.color)
        out << " #" << +style.color->red << "," << +style.color->green << "," << +style.color->blue;
    if (!style.family.empty()) out << " in " << style.family;
    if (!style.link.empty()) out << " to " << style.link;
    if (run.attachment)
        out << " [" << run.attachment->name << " " << run.attachment->width << "x" << run.attachment->height
            << "]";
    return out;
}

inline std::ostream& operator<<(std::ostream& out, const TextParagraph& paragraph) {
    out << "\n  align " << static_cast<int>(paragraph.alignment);
    if (paragraph.list)
        out << (paragraph.list->kind == ListItem::Kind::bulleted ? " bullet " : " number ")
            << paragraph.list->level;
    for (const TextRun& run : paragraph.runs) out << " | " << run;
    return out;
}

namespace testing {

/// Rich texts of everything that a note may hold, as the reader would give them.
class RandomRichText {
public:
    /// All, or what a word processor neither formats apart from the rest nor has ideas of its own about.
    enum class Scripts { all, western };
    explicit RandomRichText(unsigned seed, Scripts scripts = Scripts::all)
        : random_(seed),
          scripts_(scripts) {}

    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random_); }
    bool chance(unsigned percent) { return below(100) < percent; }

    RichText text(bool withAttachments) {
        RichText made;
        for (unsigned left = below(9); left > 0; --left) {
            TextParagraph& paragraph = made.paragraphs.emplace_back();
            paragraph.alignment = static_cast<TextAlignment>(below(4));
            if (chance(50))
                paragraph.list = ListItem{chance(50) ? ListItem::Kind::bulleted : ListItem::Kind::numbered,
                                          static_cast<int>(chance(60) ? 0 : below(9))};
            for (unsigned runs = below(5); runs > 0; --runs) paragraph.append(words(), style());
            if (withAttachments && chance(30)) {
                const std::string name =
                    made.addAttachment("a {b}\\ é" + std::to_string(below(3)) + ".png", "bytes");
                paragraph.append(TextAttachment{name, below(2000) / 20.0, below(2000) / 20.0}, style());
            }
        }
        return made;
    }

private:
    std::string words() {
        static const std::vector<std::string> western = {
            "plain",  " ",      "  two",      "\t",  "{brace}", "back\\slash", "é",
            "\u2028", "\u00A0", "1. no list", "-12", "end.",    "\\par",       "'",
            "\"",     "a;b",    "«»",         "?",   "\\'41",   "–",           "Ž"};
        static const std::vector<std::string> other = {
            "日本", "👩‍👧", "☐ box", "☑ ", "\u2011", "\u00AD", "שלום", "🇩🇪", "\uFFFD\uFFFC"};
        std::string made;
        for (unsigned left = 1 + below(4); left > 0; --left) {
            const auto& pieces = scripts_ == Scripts::all && chance(30) ? other : western;
            made += pieces[below(static_cast<unsigned>(pieces.size()))];
        }
        return made;
    }

    TextStyle style() {
        TextStyle style;
        if (chance(40)) return style;
        style.bold = chance(40);
        style.italic = chance(30);
        style.underline = chance(30);
        style.strikethrough = chance(20);
        if (chance(40)) style.halfPoints = 10 + static_cast<int>(below(60));
        if (chance(40)) style.color = TextColor{static_cast<std::uint8_t>(below(3) * 100), 20, 200};
        if (chance(30)) style.family = chance(50) ? "Noto Sans" : scripts_ == Scripts::all ? "Ü; {x}" : "Ü x";
        if (chance(20))
            style.link =
                scripts_ == Scripts::western || chance(50) ? "https://example.org/a?b=c&d#e" : "C:\\a \"b\"";
        return style;
    }

    std::mt19937 random_;
    Scripts scripts_;
};

} // namespace testing
} // namespace lumnara
