#include "core/platform/linux/DesktopEntry.h"

#include "core/text/Text.h"

#include <utility>

namespace lumnara {

namespace {

/// A value of the type string: \s, \n, \t, \r and \\ stand for themselves.
std::string unescaped(std::string_view value) {
    std::string result;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        switch (const char next = value[++i]) {
        case 's': result += ' '; break;
        case 'n': result += '\n'; break;
        case 't': result += '\t'; break;
        case 'r': result += '\r'; break;
        case '\\': result += '\\'; break;
        default: result.append({'\\', next});
        }
    }
    return result;
}

/// What a localised key may have in brackets for a locale, most fitting first: for "sr_YU.UTF-8@Latn"
/// "sr_YU@Latn", "sr_YU", "sr@Latn" and "sr".
std::vector<std::string> localeKeys(std::string_view locale) {
    const auto at = locale.find('@');
    const std::string modifier(at == std::string_view::npos ? "" : locale.substr(at));
    const auto plain = locale.substr(0, at).substr(0, locale.find('.'));
    const std::string language(plain.substr(0, plain.find('_')));
    if (language.empty()) return {};
    return {std::string(plain) + modifier, std::string(plain), language + modifier, language};
}

/// Reads Exec: arguments between blanks, quoted as a shell does, with field codes.
class ExecReader {
public:
    ExecReader(const DesktopEntry& entry, const std::filesystem::path& file) : entry_(entry), file_(file) {}

    std::optional<std::vector<std::string>> read() {
        for (const std::string& line = entry_.exec; at_ < line.size();)
            if (!step(line[at_++])) return std::nullopt;
        if (quote_ != 0) return std::nullopt;
        endArgument();
        if (arguments_.empty() || arguments_.front().empty()) return std::nullopt;
        return std::move(arguments_);
    }

private:
    bool step(char c) {
        if (quote_ == 0 && (c == ' ' || c == '\t' || c == '\n')) {
            endArgument();
        } else if (c == '%' && quote_ != '\'') {
            return expand();
        } else if (c == '\\' && quote_ != '\'') {
            return unquote();
        } else if (c == quote_) {
            quote_ = 0;
        } else if (quote_ == 0 && (c == '"' || c == '\'')) {
            quote_ = c;
            isArgument_ = true;
        } else {
            append(std::string_view(&c, 1));
        }
        return true;
    }

    /// Inside double quotes a backslash stands for itself but ahead of the four it can quote.
    bool unquote() {
        if (at_ == entry_.exec.size()) return false;
        const char next = entry_.exec[at_++];
        if (quote_ == '"' && std::string_view("\"`$\\").find(next) == std::string_view::npos) append("\\");
        append(std::string_view(&next, 1));
        return true;
    }

    bool expand() {
        if (at_ == entry_.exec.size()) return false;
        switch (entry_.exec[at_++]) {
        case '%': append("%"); return true;
        case 'c': append(entry_.name); return true;
        case 'k': append(file_.string()); return true;
        case 'i':
            if (entry_.icon.empty()) return true;
            arguments_.push_back("--icon");
            append(entry_.icon);
            return true;
        // Files and addresses, of which there are none, and the codes that are no longer in use.
        case 'f':
        case 'F':
        case 'u':
        case 'U':
        case 'd':
        case 'D':
        case 'n':
        case 'N':
        case 'v':
        case 'm': return true;
        default: return false;
        }
    }

    void append(std::string_view text) {
        argument_ += text;
        isArgument_ = true;
    }

    void endArgument() {
        if (isArgument_) arguments_.push_back(std::exchange(argument_, {}));
        isArgument_ = false;
    }

    const DesktopEntry& entry_;
    const std::filesystem::path& file_;
    std::size_t at_ = 0;
    char quote_ = 0;
    bool isArgument_ = false;
    std::string argument_;
    std::vector<std::string> arguments_;
};

} // namespace

std::optional<DesktopFileKeys> desktopFileKeys(std::string_view text) {
    std::optional<DesktopFileKeys> keys;
    bool inMainGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = text::trim(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.starts_with('[')) {
            inMainGroup = line == "[Desktop Entry]";
            if (inMainGroup && !keys) keys.emplace();
            continue;
        }
        const auto equals = line.find('=');
        if (!inMainGroup || line.starts_with('#') || equals == std::string_view::npos) continue;
        keys->emplace(text::trim(line.substr(0, equals)), text::trim(line.substr(equals + 1)));
    }
    return keys;
}

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view text, std::string_view locale) {
    const auto keys = desktopFileKeys(text);
    if (!keys) return std::nullopt;
    const auto value = [&](const std::string& key) {
        const auto found = keys->find(key);
        return found == keys->end() ? std::string() : unescaped(found->second);
    };
    if (value("Type") != "Application") return std::nullopt;

    DesktopEntry entry{.name = value("Name"),
                       .exec = value("Exec"),
                       .tryExec = value("TryExec"),
                       .icon = value("Icon"),
                       .workingFolder = value("Path"),
                       .startupWMClass = value("StartupWMClass"),
                       .needsTerminal = value("Terminal") == "true",
                       .isHidden = value("Hidden") == "true"};
    for (const std::string& localised : localeKeys(locale))
        if (const std::string name = value("Name[" + localised + "]"); !name.empty()) {
            entry.name = name;
            break;
        }
    return entry;
}

std::optional<std::vector<std::string>> DesktopEntry::command(const std::filesystem::path& file) const {
    return ExecReader(*this, file).read();
}

} // namespace lumnara
