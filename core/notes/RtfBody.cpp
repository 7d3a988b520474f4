#include "core/notes/RtfBody.h"

#include "core/text/Utf8.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

/// Styles are spelled out in every run. A text that changes them more often than this keeps its characters,
/// but no longer its changes of style.
constexpr std::size_t mostRuns = 50'000;
constexpr int mostPictures = 1'000;
constexpr int largestSide = 200'000; // twentieths of a point

enum class Meaning { text, lineBreak, paragraphBreak, nothing };

Meaning meaningOf(char32_t c) {
    if (c == '\n' || c == '\r' || c == 0x85 || c == 0x2029) return Meaning::paragraphBreak;
    if (c == 0x0B || c == 0x0C || c == 0x2028) return Meaning::lineBreak;
    if (c == '\t') return Meaning::text;
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) ? Meaning::nothing : Meaning::text;
}

std::string_view pictureSuffix(std::string_view bytes) {
    if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return ".png";
    return bytes.starts_with("\xFF\xD8\xFF") ? ".jpg" : "";
}

} // namespace

void RtfBody::addText(std::string_view text, const TextStyle& style, const Look& look) {
    std::string stretch;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = text::decodeNext(text, at);
        switch (meaningOf(c)) {
        case Meaning::text: text::appendUtf8(stretch, c); break;
        case Meaning::lineBreak: text::appendUtf8(stretch, 0x2028); break;
        case Meaning::nothing: break;
        case Meaning::paragraphBreak:
            addStretch(std::exchange(stretch, {}), style, look);
            endParagraph(look);
            break;
        }
    }
    addStretch(stretch, style, look);
}

void RtfBody::addStretch(std::string_view text, const TextStyle& style, const Look& look) {
    if (text.empty()) return;
    writePendingTabs(look);
    current_.alignment = look.alignment;
    current_.list = look.list;
    const std::size_t before = current_.runs.size();
    if (runs_ < mostRuns) {
        current_.append(text, style);
    } else if (before > 0 && !current_.runs.back().attachment) {
        current_.runs.back().text += text;
    } else {
        current_.append(text, {});
    }
    runs_ += current_.runs.size() - before;
}

void RtfBody::addAttachment(TextAttachment attachment, const TextStyle& style, const Look& look) {
    writePendingTabs(look);
    current_.alignment = look.alignment;
    current_.list = look.list;
    current_.append(std::move(attachment), runs_ < mostRuns ? style : TextStyle{});
    ++runs_;
}

void RtfBody::addPicture(std::string bytes, int width, int height, const TextStyle& style, const Look& look) {
    const std::string_view suffix = pictureSuffix(bytes);
    if (suffix.empty() || pictures_ == mostPictures) return;
    const std::string name = "embedded picture " + std::to_string(++pictures_) + std::string(suffix);
    addAttachment({text_.addAttachment(name, std::move(bytes)), points(width), points(height)}, style, look);
}

void RtfBody::endRow(const Look& look) {
    pendingTabs_ = 0;
    endParagraph(look);
}

void RtfBody::endParagraph(const Look& look) {
    writePendingTabs(look);
    current_.alignment = look.alignment;
    current_.list = look.list;
    text_.paragraphs.push_back(std::exchange(current_, {}));
}

void RtfBody::breakParagraph(const Look& look) {
    if (!current_.runs.empty()) endParagraph(look);
}

RichText RtfBody::finish() {
    if (!current_.runs.empty()) text_.paragraphs.push_back(std::exchange(current_, {}));
    return std::move(text_);
}

double RtfBody::points(int twentieths) { return std::clamp(twentieths, 0, largestSide) / 20.0; }

void RtfBody::writePendingTabs(const Look& look) {
    const auto count = static_cast<std::size_t>(std::exchange(pendingTabs_, 0));
    addStretch(std::string(count, '\t'), {}, look);
}

} // namespace lumnara
