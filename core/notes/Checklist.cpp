#include "core/notes/Checklist.h"

#include "core/text/Clusters.h"
#include "core/text/Utf16.h"
#include "core/text/Utf8.h"

#include <algorithm>

namespace lumnara::Checklist {

namespace {

constexpr std::string_view uncheckedBox = uncheckedMarker.substr(0, uncheckedMarker.size() - 1);
constexpr std::string_view checkedBox = checkedMarker.substr(0, checkedMarker.size() - 1);

/// A change in bytes of the text.
struct ByteEdit {
    std::size_t begin = 0;
    std::size_t length = 0;
    std::string_view replacement;
};

bool endsLine(char32_t c) { return c == '\n' || c == '\r' || c == 0x85 || c == 0x2028 || c == 0x2029; }

/// Behind the terminator of the line that begins at `begin`.
std::size_t lineEnd(std::string_view text, std::size_t begin) {
    for (std::size_t at = begin; at < text.size();) {
        const char32_t c = text::decodeNext(text, at);
        if (!endsLine(c)) continue;
        return c == '\r' && at < text.size() && text[at] == '\n' ? at + 1 : at;
    }
    return text.size();
}

/// The line that holds the byte, with its terminator.
std::string_view lineAt(std::string_view text, std::size_t byte) {
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = lineEnd(text, begin);
        if (end > byte || end == text.size()) return text.substr(begin, end - begin);
        begin = end;
    }
}

bool isChecked(std::string_view line) { return text::beginsWith(line, checkedMarker); }

std::optional<ByteEdit> toggled(std::string_view text, std::size_t byte) {
    const std::string_view line = lineAt(text, byte);
    if (!isItem(line)) return std::nullopt;
    const std::size_t begin = static_cast<std::size_t>(line.data() - text.data());
    return ByteEdit{begin, checkedBox.size(), isChecked(line) ? uncheckedBox : checkedBox};
}

ByteEdit converted(std::string_view text, std::size_t byte) {
    const std::string_view line = lineAt(text, byte);
    const std::size_t begin = static_cast<std::size_t>(line.data() - text.data());
    return isItem(line) ? ByteEdit{begin, checkedMarker.size(), {}} : ByteEdit{begin, 0, uncheckedMarker};
}

/// A place as the nearest one inside a text that isn't empty.
std::size_t clamped(std::ptrdiff_t place, std::size_t length) {
    return static_cast<std::size_t>(
        std::clamp<std::ptrdiff_t>(place, 0, static_cast<std::ptrdiff_t>(length) - 1));
}

bool isInside(std::ptrdiff_t place, std::size_t length) {
    return place >= 0 && static_cast<std::size_t>(place) < length;
}

Edit inUtf16(std::string_view text, const ByteEdit& edit) {
    return {text::utf16Length(text.substr(0, edit.begin)),
            text::utf16Length(text.substr(edit.begin, edit.length)), std::string(edit.replacement)};
}

std::string applied(std::string_view text, const ByteEdit& edit) {
    return std::string(text).replace(edit.begin, edit.length, edit.replacement);
}

std::size_t byteAtCharacter(std::string_view text, std::size_t position) {
    return text::first(text, position).size();
}

} // namespace

bool isItem(std::string_view line) { return text::beginsWith(line, uncheckedMarker) || isChecked(line); }

std::optional<Edit> toggleEdit(std::string_view text, std::ptrdiff_t location) {
    if (!isInside(location, text::utf16Length(text))) return std::nullopt;
    const auto edit = toggled(text, text::byteAtUtf16(text, static_cast<std::size_t>(location)));
    return edit ? std::optional(inUtf16(text, *edit)) : std::nullopt;
}

Edit convertEdit(std::string_view text, std::ptrdiff_t location) {
    if (text.empty()) return {0, 0, std::string(uncheckedMarker)};
    const std::size_t unit = clamped(location, text::utf16Length(text));
    return inUtf16(text, converted(text, text::byteAtUtf16(text, unit)));
}

std::string toggle(std::string_view text, std::ptrdiff_t position) {
    if (!isInside(position, text::length(text))) return std::string(text);
    const auto edit = toggled(text, byteAtCharacter(text, static_cast<std::size_t>(position)));
    return edit ? applied(text, *edit) : std::string(text);
}

std::string convert(std::string_view text, std::ptrdiff_t position) {
    if (text.empty()) return std::string(uncheckedMarker);
    const std::size_t character = clamped(position, text::length(text));
    return applied(text, converted(text, byteAtCharacter(text, character)));
}

Progress progress(std::string_view text) {
    Progress result;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = lineEnd(text, begin);
        const std::string_view line = text.substr(begin, end - begin);
        if (isItem(line)) ++result.total;
        if (isChecked(line)) ++result.checked;
        begin = end;
    }
    return result;
}

} // namespace lumnara::Checklist
