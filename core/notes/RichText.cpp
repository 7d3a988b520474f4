#include "core/notes/RichText.h"

#include "core/text/Text.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

constexpr std::string_view attachmentCharacter = "\uFFFC";
constexpr std::size_t longestAttachmentName = 200;

/// "picture.png" with 2: "picture 2.png".
std::string numberedName(const std::string& name, int number) {
    const std::size_t dot = name.rfind('.');
    const std::size_t cut = dot == std::string::npos || dot == 0 ? name.size() : dot;
    return name.substr(0, cut) + " " + std::to_string(number) + name.substr(cut);
}

} // namespace

void TextParagraph::append(std::string_view text, const TextStyle& style) {
    if (text.empty()) return;
    if (!runs.empty() && !runs.back().attachment && runs.back().style == style) {
        runs.back().text += text;
    } else {
        runs.push_back({std::string(text), style, std::nullopt});
    }
}

void TextParagraph::append(TextAttachment attachment, const TextStyle& style) {
    runs.push_back({{}, style, std::move(attachment)});
}

RichText RichText::plain(std::string_view text) {
    RichText made;
    if (text.empty()) return made;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        std::string_view line = text.substr(begin, end - begin);
        if (line.ends_with('\r')) line.remove_suffix(1);
        made.paragraphs.emplace_back().append(line, {});
        begin = end + 1;
    }
    return made;
}

std::string RichText::plainText() const {
    std::string text;
    for (const TextParagraph& paragraph : paragraphs) {
        if (&paragraph != &paragraphs.front()) text += '\n';
        for (const TextRun& run : paragraph.runs) {
            text += run.text;
            if (run.attachment) text += attachmentCharacter;
        }
    }
    return text;
}

bool RichText::empty() const {
    return std::all_of(paragraphs.begin(), paragraphs.end(),
                       [](const TextParagraph& paragraph) { return paragraph.runs.empty(); });
}

std::string RichText::addAttachment(std::string_view name, std::string bytes) {
    const std::string wanted = attachmentName(name);
    std::string unique = wanted;
    for (int number = 2;; ++number) {
        const auto found = attachments.find(unique);
        if (found == attachments.end()) break;
        if (found->second == bytes) return unique;
        unique = numberedName(wanted, number);
    }
    attachments.emplace(unique, std::move(bytes));
    return unique;
}

std::string RichText::attachmentName(std::string_view name) {
    std::string safe = text::withoutControls(name.substr(name.rfind('/') + 1));
    safe = std::string(text::trim(safe));
    std::size_t size = std::min(safe.size(), longestAttachmentName);
    while (size < safe.size() && (static_cast<unsigned char>(safe[size]) & 0xC0) == 0x80) --size;
    safe = std::string(text::trim(std::string_view(safe).substr(0, size)));
    const bool isTaken = text::equalsIgnoringCase(safe, "TXT.rtf");
    return safe.empty() || safe == "." || safe == ".." || isTaken ? "attachment" : safe;
}

} // namespace lumnara
