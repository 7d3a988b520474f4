#include "core/notes/RtfWriter.h"

#include "core/text/Utf8.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <map>

namespace lumnara {

namespace {

constexpr int levelCount = ListItem::deepestLevel + 1;
constexpr int levelIndent = 360; // twentieths of a point

bool isBetween(int c, int low, int high) { return c >= low && c <= high; }

/// One code point as RTF has it. Line ends stay inside their paragraph; other controls mean nothing there.
void appendCharacter(std::string& out, char32_t c) {
    if (c == '\\' || c == '{' || c == '}') {
        out += '\\';
        out += static_cast<char>(c);
    } else if (c == '\t') {
        out += "\\tab ";
    } else if (isBetween(static_cast<int>(c), '\n', '\r') || c == 0x85 || c == 0x2028 || c == 0x2029) {
        out += "\\line ";
    } else if (c < 0x20 || isBetween(static_cast<int>(c), 0x7F, 0x9F)) {
        return;
    } else if (c < 0x7F) {
        out += static_cast<char>(c);
    } else if (c <= 0xFFFF) {
        out += fmt::format("\\u{}?", static_cast<std::int16_t>(c));
    } else {
        const char32_t offset = c - 0x10000;
        out += fmt::format("\\u{}?\\u{}?", static_cast<std::int16_t>(0xD800 + (offset >> 10)),
                           static_cast<std::int16_t>(0xDC00 + (offset & 0x3FF)));
    }
}

void appendText(std::string& out, std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = text::decodeNext(text, at);
        // Some readers take two blanks in a row for an indentation and put other characters there.
        if (c == ' ' && out.ends_with(' ')) {
            out += "\\u32?";
        } else {
            appendCharacter(out, c);
        }
    }
}

/// A name in the table of fonts, where a semicolon would end it.
void appendFamily(std::string& out, std::string_view family) {
    for (std::size_t at = 0; at < family.size();) {
        const char32_t c = text::decodeNext(family, at);
        if (c == ';') {
            out += "\\u59?";
        } else {
            appendCharacter(out, c);
        }
    }
}

/// An address between the quotes of a field's instruction.
std::string quotedAddress(std::string_view address) {
    std::string quoted = "\"";
    for (const char c : address) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

/// Numbers what stands in a table, in the order of first use.
template <class Value> class NumberedValues {
public:
    explicit NumberedValues(int first) : next_(first) {}
    void add(const Value& value) {
        if (numbers_.emplace(value, next_).second) {
            ordered_.push_back(value);
            ++next_;
        }
    }
    int of(const Value& value) const { return numbers_.at(value); }
    const std::vector<Value>& ordered() const { return ordered_; }

private:
    std::map<Value, int> numbers_;
    std::vector<Value> ordered_;
    int next_;
};

using ColorValue = std::array<int, 3>;
ColorValue valueOf(const TextColor& color) { return {color.red, color.green, color.blue}; }

/// A list in the document's table: the kind of each of its levels.
using ListKinds = std::array<ListItem::Kind, levelCount>;

/// Where a paragraph stands in the lists.
struct ListPlace {
    int list = 0;   ///< from 1
    int number = 0; ///< from 1, among its level
};

/// Divides the paragraphs into lists: neighbours as long as each level keeps its kind.
class ListPlan {
public:
    void add(const TextParagraph& paragraph) {
        ListPlace place;
        if (paragraph.list) {
            place = placeOf(*paragraph.list);
        } else {
            isOpen_ = false;
        }
        places_.push_back(place);
    }
    const ListPlace& place(std::size_t paragraph) const { return places_[paragraph]; }
    const std::vector<ListKinds>& lists() const { return lists_; }

    static int levelOf(const ListItem& item) { return std::clamp(item.level, 0, ListItem::deepestLevel); }

private:
    ListPlace placeOf(const ListItem& item) {
        const auto level = static_cast<std::size_t>(levelOf(item));
        if (!isOpen_ || (isUsed_[level] && lists_.back()[level] != item.kind)) {
            lists_.emplace_back().fill(item.kind);
            isUsed_.fill(false);
            counts_.fill(0);
            isOpen_ = true;
        }
        lists_.back()[level] = item.kind;
        isUsed_[level] = true;
        std::fill(counts_.begin() + static_cast<std::ptrdiff_t>(level) + 1, counts_.end(), 0);
        return {static_cast<int>(lists_.size()), ++counts_[level]};
    }

    std::vector<ListPlace> places_;
    std::vector<ListKinds> lists_;
    bool isOpen_ = false;
    std::array<bool, levelCount> isUsed_{};
    std::array<int, levelCount> counts_{};
};

class RtfDocument {
public:
    explicit RtfDocument(const RichText& text) : text_(text) {
        for (const TextParagraph& paragraph : text.paragraphs) {
            lists_.add(paragraph);
            for (const TextRun& run : paragraph.runs) {
                if (!run.style.family.empty()) fonts_.add(run.style.family);
                if (run.style.color) colors_.add(valueOf(*run.style.color));
            }
        }
    }

    std::string write() {
        out_ = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n";
        writeFonts();
        writeColors();
        writeLists();
        for (std::size_t i = 0; i < text_.paragraphs.size(); ++i)
            writeParagraph(text_.paragraphs[i], lists_.place(i));
        return std::move(out_) + "}\n";
    }

private:
    void writeFonts() {
        // The font of text that names none.
        out_ += "{\\fonttbl{\\f0\\fswiss\\fcharset0 Helvetica;}";
        for (const std::string& family : fonts_.ordered()) {
            out_ += fmt::format("{{\\f{}\\fnil\\fcharset0 ", fonts_.of(family));
            appendFamily(out_, family);
            out_ += ";}";
        }
        out_ += "}\n";
    }

    void writeColors() {
        out_ += "{\\colortbl;";
        for (const ColorValue& color : colors_.ordered())
            out_ += fmt::format("\\red{}\\green{}\\blue{};", color[0], color[1], color[2]);
        out_ += "}\n";
    }

    void writeLists() {
        const auto& lists = lists_.lists();
        if (lists.empty()) return;
        out_ += "{\\*\\listtable\n";
        for (std::size_t i = 0; i < lists.size(); ++i) {
            out_ += fmt::format("{{\\list\\listtemplateid{}\\listhybrid\n", i + 1);
            for (int level = 0; level < levelCount; ++level)
                writeLevel(level, lists[i][static_cast<std::size_t>(level)]);
            out_ += fmt::format("{{\\listname ;}}\\listid{}}}\n", i + 1);
        }
        out_ += "}\n{\\*\\listoverridetable";
        for (std::size_t i = 1; i <= lists.size(); ++i)
            out_ += fmt::format("{{\\listoverride\\listid{0}\\listoverridecount0\\ls{0}}}", i);
        out_ += "}\n";
    }

    void writeLevel(int level, ListItem::Kind kind) {
        const bool isNumbered = kind == ListItem::Kind::numbered;
        const int code = isNumbered ? 0 : 23;
        out_ += fmt::format("{{\\listlevel\\levelnfc{0}\\levelnfcn{0}\\leveljc0\\leveljcn0\\levelfollow0"
                            "\\levelstartat1\\levelspace0\\levelindent0",
                            code);
        out_ += isNumbered ? fmt::format("{{\\leveltext\\'02\\'{:02x}.;}}{{\\levelnumbers\\'01;}}", level)
                           : "{\\leveltext\\'01\\u8226?;}{\\levelnumbers;}";
        out_ += fmt::format("\\fi-{}\\li{}}}\n", levelIndent, (level + 1) * 2 * levelIndent);
    }

    void writeParagraph(const TextParagraph& paragraph, const ListPlace& place) {
        static constexpr std::array alignments = {"\\ql", "\\qc", "\\qr", "\\qj"};
        out_ += "\\pard";
        if (paragraph.list) writeItem(*paragraph.list, place);
        out_ += alignments[static_cast<std::size_t>(paragraph.alignment)];
        if (paragraph.list) {
            const bool isNumbered = paragraph.list->kind == ListItem::Kind::numbered;
            out_ += "{\\listtext\\tab " + (isNumbered ? std::to_string(place.number) + "." : "\\u8226?") +
                    "\\tab }";
        } else {
            out_ += ' ';
        }
        for (const TextRun& run : paragraph.runs) writeRun(run);
        out_ += "\\par\n";
    }

    void writeItem(const ListItem& item, const ListPlace& place) {
        const int level = ListPlan::levelOf(item);
        out_ += fmt::format("\\ls{}\\ilvl{}\\fi-{}\\li{}", place.list, level, levelIndent,
                            (level + 1) * 2 * levelIndent);
    }

    void writeRun(const TextRun& run) {
        const bool isLink = !run.style.link.empty();
        if (isLink) {
            out_ += "{\\field{\\*\\fldinst{HYPERLINK ";
            appendText(out_, quotedAddress(run.style.link));
            out_ += "}}{\\fldrslt ";
        }
        const std::string words = wordsOf(run.style);
        if (!words.empty()) out_ += "{" + words + " ";
        if (run.attachment) writeAttachment(*run.attachment);
        appendText(out_, run.text);
        if (!words.empty()) out_ += '}';
        if (isLink) out_ += "}}";
    }

    std::string wordsOf(const TextStyle& style) const {
        std::string words;
        if (!style.family.empty()) words += fmt::format("\\f{}", fonts_.of(style.family));
        if (style.halfPoints > 0) words += fmt::format("\\fs{}", style.halfPoints);
        if (style.bold) words += "\\b";
        if (style.italic) words += "\\i";
        if (style.underline) words += "\\ul";
        if (style.strikethrough) words += "\\strike";
        if (style.color) words += fmt::format("\\cf{}", colors_.of(valueOf(*style.color)));
        return words;
    }

    void writeAttachment(const TextAttachment& attachment) {
        out_ += "{{\\NeXTGraphic ";
        appendText(out_, RichText::attachmentName(attachment.name));
        if (attachment.width > 0) out_ += fmt::format(" \\width{}", std::lround(attachment.width * 20));
        if (attachment.height > 0) out_ += fmt::format(" \\height{}", std::lround(attachment.height * 20));
        out_ += "}\\'ac}";
    }

    const RichText& text_;
    NumberedValues<std::string> fonts_{1};
    NumberedValues<ColorValue> colors_{1};
    ListPlan lists_;
    std::string out_;
};

} // namespace

std::string RtfWriter::write(const RichText& text) { return RtfDocument(text).write(); }

} // namespace lumnara
