#include "core/platform/i3sway/WorkspaceNames.h"

#include "core/text/Utf8.h"

#include <algorithm>
#include <array>

namespace lumnara {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Words that stand for another workspace in a command: sway takes none as a name, i3 only in quotes.
constexpr std::array<std::string_view, 7> directions{
    "next", "prev", "next_on_output", "prev_on_output", "back_and_forth", "current", "number"};

std::string trimmedBlanks(const std::string& text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string withoutControls(std::string_view title) {
    std::string plain;
    for (std::size_t at = 0; at < title.size();) {
        const char32_t c = text::decodeNext(title, at);
        const bool control = c < 0x20 || (c >= 0x7f && c < 0xa0) || c == 0x2028 || c == 0x2029;
        text::appendUtf8(plain, control ? U' ' : c);
    }
    return trimmedBlanks(plain);
}

/// sway has no escape for a backslash in front of a quote that ends a run: a blank parts the two.
std::string withoutOpenBackslashes(const std::string& title) {
    std::string closed;
    bool open = false;
    for (const char c : title) {
        if (open && (c == '"' || c == '\'')) closed += ' ';
        open = c == '\\' && !open;
        closed += c;
    }
    return open ? closed + ' ' : closed;
}

std::string acceptable(IpcDialect dialect, std::string_view title) {
    std::string name = withoutControls(title);
    if (dialect == IpcDialect::sway) return withoutOpenBackslashes(name);
    // Names that begin so are i3's own.
    while (name.starts_with("__")) name.erase(0, 1);
    return name;
}

std::string quotedForI3(std::string_view name) {
    std::string argument = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') argument += '\\';
        argument += c;
    }
    return argument + '"';
}

/// sway joins quoted runs, undoes no escapes, and puts in variables even between quotes.
std::string quotedForSway(std::string_view name) {
    std::string argument = "\"";
    char quote = '"';
    for (const char c : name) {
        if (c == quote) {
            argument += quote;
            quote = quote == '"' ? '\'' : '"';
            argument += quote;
        }
        argument += c;
        if (c == '$') argument += '$';
    }
    return argument + quote;
}

} // namespace

std::string workspaceKey(std::string_view name) {
    std::string key(name);
    std::ranges::transform(key, key.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return key;
}

std::string_view leadingDigits(std::string_view name) {
    return name.substr(0, static_cast<std::size_t>(std::ranges::find_if_not(name, isDigit) - name.begin()));
}

std::string titledWorkspace(IpcDialect dialect, std::string_view ownName, std::string_view title,
                            const std::set<std::string>& taken) {
    const std::string label = acceptable(dialect, title);
    std::string base(ownName);
    if (!label.empty()) {
        const std::string_view number = leadingDigits(ownName);
        base = number.empty() ? label : std::string(number) + ": " + label;
    }
    const auto free = [&](const std::string& name) {
        const std::string key = workspaceKey(name);
        return !taken.contains(key) && std::ranges::find(directions, key) == directions.end();
    };
    std::string name = base;
    for (int n = 2; !free(name); ++n) name = base + " " + std::to_string(n);
    return name;
}

std::string quoted(IpcDialect dialect, std::string_view name) {
    return dialect == IpcDialect::i3 ? quotedForI3(name) : quotedForSway(name);
}

} // namespace lumnara
