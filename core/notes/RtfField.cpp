#include "core/notes/RtfField.h"

#include "core/text/Text.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace lumnara {

namespace {

constexpr std::size_t longestAddress = 4'096; // bytes

struct InstructionWord {
    std::string text;
    bool isQuoted = false;

    bool isSwitch(std::string_view name) const { return !isQuoted && text == name; }
};

/// Takes the words of an instruction one by one, without their quotes.
class InstructionWords {
public:
    explicit InstructionWords(std::string_view text) : rest_(text) {}

    std::optional<InstructionWord> next() {
        const std::size_t begin = rest_.find_first_not_of(" \t");
        if (begin == std::string_view::npos) return std::nullopt;
        rest_.remove_prefix(begin);
        if (rest_.front() == '"') return quoted();
        const std::size_t end = std::min(rest_.find_first_of(" \t\""), rest_.size());
        InstructionWord word{std::string(rest_.substr(0, end)), false};
        rest_.remove_prefix(end);
        return word;
    }

private:
    InstructionWord quoted() {
        InstructionWord word{{}, true};
        std::size_t at = 1;
        for (; at < rest_.size() && rest_[at] != '"'; ++at) {
            if (rest_[at] == '\\' && at + 1 < rest_.size()) ++at;
            word.text += rest_[at];
        }
        rest_.remove_prefix(std::min(at + 1, rest_.size()));
        return word;
    }

    std::string_view rest_;
};

} // namespace

std::string rtfLinkAddress(std::string_view instruction) {
    const std::string clean = text::withoutControls(instruction);
    InstructionWords words(clean);
    const auto name = words.next();
    if (!name || !text::equalsIgnoringCase(name->text, "HYPERLINK")) return {};
    std::optional<std::string> address;
    std::string place;
    while (const auto word = words.next()) {
        if (word->isSwitch("\\l")) {
            if (const auto named = words.next()) place = named->text;
        } else if (word->isSwitch("\\o") || word->isSwitch("\\t")) {
            words.next();
        } else if (!address && (word->isQuoted || !word->text.starts_with('\\'))) {
            address = word->text;
        }
    }
    const std::string whole = address.value_or("") + (place.empty() ? "" : "#" + place);
    return whole.size() > longestAddress ? std::string() : whole;
}

} // namespace lumnara
