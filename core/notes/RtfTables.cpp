#include "core/notes/RtfTables.h"

#include "core/text/Text.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

constexpr std::size_t longestFamily = 128; // bytes

/// The code pages of the Windows character sets.
std::optional<int> codePageOfSet(int set) {
    static const std::map<int, int> codePages = {
        {0, 1252},   {2, 1252},   {77, 10000}, {128, 932},  {129, 949},  {130, 1361}, {134, 936},
        {136, 950},  {161, 1253}, {162, 1254}, {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257},
        {204, 1251}, {222, 874},  {238, 1250}, {254, 437},  {255, 850},
    };
    const auto found = codePages.find(set);
    return found == codePages.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

void RtfFonts::begin(int number) {
    end();
    number_ = number;
}

void RtfFonts::setCodePage(int codePage) { current_.codePage = codePage; }

void RtfFonts::setCharacterSet(int set) {
    if (!current_.codePage) current_.codePage = codePageOfSet(set);
}

void RtfFonts::addToName(std::string_view text) { current_.family += text; }

void RtfFonts::end() {
    if (number_) {
        current_.family = std::string(text::trim(text::withoutControls(current_.family)));
        if (current_.family.size() > longestFamily) current_.family.clear();
        fonts_.insert_or_assign(*number_, std::move(current_));
    }
    number_.reset();
    current_ = {};
}

const std::string& RtfFonts::family(int number) const {
    static const std::string none;
    const auto found = fonts_.find(number);
    return found == fonts_.end() ? none : found->second.family;
}

std::optional<int> RtfFonts::codePage(int number) const {
    const auto found = fonts_.find(number);
    return found == fonts_.end() ? std::nullopt : found->second.codePage;
}

void RtfColors::setPart(std::uint8_t TextColor::* part, int value) {
    if (!current_) current_.emplace();
    (*current_).*part = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void RtfColors::end() { colors_.push_back(std::exchange(current_, std::nullopt)); }

std::optional<TextColor> RtfColors::color(int number) const {
    return std::cmp_less(number, 0) || std::cmp_greater_equal(number, colors_.size())
               ? std::nullopt
               : colors_[static_cast<std::size_t>(number)];
}

void RtfLists::beginList() {
    current_.fill(bullets);
    level_ = -1;
}

void RtfLists::setFormat(int format) {
    if (level_ >= 0 && level_ <= ListItem::deepestLevel) current_[static_cast<std::size_t>(level_)] = format;
}

void RtfLists::endList(int id) { lists_.insert_or_assign(id, current_); }

void RtfLists::endOverride(int number) { overrides_.insert_or_assign(number, overridden_); }

std::optional<int> RtfLists::format(int number, int level) const {
    const auto listId = overrides_.find(number);
    if (listId == overrides_.end()) return std::nullopt;
    const auto list = lists_.find(listId->second);
    return list == lists_.end() ? std::nullopt : std::optional(list->second[static_cast<std::size_t>(level)]);
}

} // namespace lumnara
