#include "core/notes/RtfReader.h"

#include "core/notes/RtfBody.h"
#include "core/notes/RtfField.h"
#include "core/notes/RtfState.h"
#include "core/notes/RtfTables.h"
#include "core/notes/RtfText.h"
#include "core/notes/RtfTokens.h"
#include "core/notes/RtfWords.h"
#include "core/text/Text.h"

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

using Action = RtfWord::Action;
using Destination = RtfDestination;
using Kind = RtfToken::Kind;

/// Deeper groups share the state of this one.
constexpr std::size_t deepestGroup = 10'000;
constexpr int largestHalfPoints = 3'276; // as word processors have it

bool keepsText(Destination destination) {
    return destination == Destination::body || destination == Destination::fontTable ||
           destination == Destination::fieldInstruction || destination == Destination::attachment;
}

class RtfParser {
public:
    explicit RtfParser(std::string_view rtf) : tokens_(rtf) {}

    RichText parse() {
        do {
            const RtfToken token = tokens_.next();
            if (token.kind == Kind::end) break;
            take(token);
        } while (groups_.size() > 1);
        while (groups_.size() > 1) closeGroup();
        flush();
        return body_.finish();
    }

private:
    RtfGroup& group() { return groups_.back(); }
    bool goesTo(Destination destination) const { return groups_.back().destination == destination; }

    void take(const RtfToken& token) {
        switch (token.kind) {
        case Kind::open: return openGroup();
        case Kind::close: return excess_ > 0 ? static_cast<void>(--excess_) : closeGroup();
        case Kind::word: return takeWord(token);
        case Kind::symbol: return takeSymbol(token.byte);
        case Kind::text:
        case Kind::hex: return takeByte(token);
        case Kind::binary:
            if (!isFallback() && goesTo(Destination::picture)) picture_.bytes += token.data;
            return;
        case Kind::end: return;
        }
    }

    // Groups

    void openGroup() {
        flush();
        endExpectations();
        if (groups_.size() < deepestGroup) {
            groups_.push_back(group());
        } else {
            ++excess_;
        }
    }

    void closeGroup() {
        flush();
        endExpectations();
        const RtfGroup closed = group();
        groups_.pop_back();
        if (closed.destination != group().destination) finish(closed.destination);
    }

    void endExpectations() {
        fallbackLeft_ = 0;
        expectsAttachmentCharacter_ = false;
        isIgnorable_ = false;
    }

    void begin(Destination destination) {
        // A destination in a place of its own is no part of the text around it.
        const bool isMisplaced = !goesTo(Destination::body) && destination != Destination::body;
        if (isMisplaced) destination = Destination::skipped;
        switch (destination) {
        case Destination::picture: picture_ = {}; break;
        case Destination::attachment: file_ = {}; break;
        case Destination::fieldInstruction: instruction_.clear(); break;
        case Destination::marker:
        case Destination::oldList: mark_ = ListItem::Kind::bulleted; break;
        default: break;
        }
        const bool staysInTable = destination == Destination::body && !goesTo(Destination::twoForms);
        if (!staysInTable) group().destination = destination;
    }

    /// After the group's end, with the state of the group around it.
    void finish(Destination destination) {
        switch (destination) {
        case Destination::fontTable: fonts_.end(); break;
        case Destination::marker:
        case Destination::oldList: group().mark = mark_; break;
        case Destination::picture: finishPicture(); break;
        case Destination::attachment: finishAttachment(); break;
        default: break;
        }
    }

    void finishPicture() {
        if (isSeen())
            body_.addPicture(std::move(picture_.bytes), RtfPicture::scaled(picture_.width, picture_.scaleX),
                             RtfPicture::scaled(picture_.height, picture_.scaleY), style(), look());
        picture_ = {};
    }

    void finishAttachment() {
        expectsAttachmentCharacter_ = true;
        const bool isNamed = !text::trim(text::withoutControls(file_.name)).empty();
        if (isNamed && isSeen())
            body_.addAttachment({RichText::attachmentName(file_.name), RtfBody::points(file_.width),
                                 RtfBody::points(file_.height)},
                                style(), look());
    }

    // Text

    bool isSeen() const { return goesTo(Destination::body) && !groups_.back().hidden; }

    /// Whether what comes stands for a character that was read already.
    bool isFallback() {
        if (fallbackLeft_ == 0) return false;
        --fallbackLeft_;
        return true;
    }

    bool isAttachmentCharacter(bool isAscii) {
        return std::exchange(expectsAttachmentCharacter_, false) && !isAscii;
    }

    void takeByte(const RtfToken& token) {
        const char c = token.byte;
        isIgnorable_ = false;
        if (isFallback() || isAttachmentCharacter(static_cast<unsigned char>(c) < 0x80)) return;
        if (goesTo(Destination::picture)) {
            if (token.kind == Kind::text) picture_.addDigit(c);
        } else if (goesTo(Destination::marker)) {
            if ((c >= '0' && c <= '9') || c == '.' || c == ')') mark_ = ListItem::Kind::numbered;
        } else if (goesTo(Destination::colorTable)) {
            if (c == ';') colors_.end();
        } else if (goesTo(Destination::fontTable) && c == ';' && token.kind == Kind::text) {
            flush();
            fonts_.end();
        } else if (keepsText(group().destination)) {
            pending_.addByte(c, codePage());
        }
    }

    void takeSymbol(char symbol) {
        if (symbol == '*') {
            isIgnorable_ = true;
            return;
        }
        switch (symbol) {
        case '\\':
        case '{':
        case '}': return takeByte(RtfToken::of(Kind::hex, symbol));
        case '~': return takeCharacter(0xA0);
        case '-': return takeCharacter(0xAD);
        case '_': return takeCharacter(0x2011);
        default: static_cast<void>(isFallback());
        }
    }

    void takeCharacter(char32_t c) {
        if (!isFallback() && keepsText(group().destination)) pending_.addCharacter(c);
    }

    void takeUnit(std::optional<int> unit) {
        if (!unit) return;
        fallbackLeft_ = group().fallbackLength;
        if (!isAttachmentCharacter(false) && keepsText(group().destination))
            pending_.addUnit(static_cast<char16_t>(static_cast<unsigned>(*unit) & 0xFFFF));
    }

    int codePage() const {
        const auto ofFont =
            goesTo(Destination::fontTable) ? fonts_.codePage() : fonts_.codePage(groups_.back().font);
        return ofFont.value_or(codePage_);
    }

    void flush() {
        if (pending_.empty()) return;
        const std::string text = pending_.take();
        switch (group().destination) {
        case Destination::body:
            if (isSeen()) body_.addText(text, style(), look());
            break;
        case Destination::fontTable: fonts_.addToName(text); break;
        case Destination::fieldInstruction: instruction_ += text; break;
        case Destination::attachment: file_.name += text; break;
        default: break;
        }
    }

    TextStyle style() const {
        const RtfGroup& look = groups_.back();
        return {.bold = look.bold,
                .italic = look.italic,
                .underline = look.underline,
                .strikethrough = look.strikethrough,
                .halfPoints = look.halfPoints,
                .color = colors_.color(look.color),
                .family = fonts_.family(look.font),
                .link = look.link < 0 ? std::string() : links_[static_cast<std::size_t>(look.link)]};
    }

    RtfBody::Look look() const {
        const RtfGroup& paragraph = groups_.back();
        RtfBody::Look look{paragraph.alignment, std::nullopt};
        auto kind = paragraph.mark;
        if (paragraph.list > 0) {
            const auto format = lists_.format(paragraph.list, paragraph.level);
            if (format == RtfLists::noMark) return look;
            if (format)
                kind = *format == RtfLists::bullets ? ListItem::Kind::bulleted : ListItem::Kind::numbered;
            if (!kind) kind = ListItem::Kind::bulleted;
        }
        if (kind) look.list = ListItem{*kind, paragraph.level};
        return look;
    }

    // Words

    void takeWord(const RtfToken& token) {
        const bool isIgnorable = std::exchange(isIgnorable_, false);
        if (goesTo(Destination::skipped)) return;
        const RtfWord word = RtfWord::of(token.word);
        if (word.action == Action::character) return takeCharacter(static_cast<char32_t>(word.value));
        fallbackLeft_ = 0;
        // A pair of surrogates may have the length of its fallbacks set between the two.
        if (word.action == Action::unit) return takeUnit(token.parameter);
        if (word.action == Action::fallbackLength) {
            group().fallbackLength = std::clamp(token.parameter.value_or(1), 0, 255);
            return;
        }
        if (word.action == Action::unknown && !isIgnorable) return;
        flush();
        if (word.action == Action::unknown) {
            group().destination = Destination::skipped;
        } else if (!takeCharacterWord(word, token.parameter) && !takeParagraphWord(word, token.parameter)) {
            takeTableWord(word, token.parameter.value_or(0));
        }
    }

    bool takeCharacterWord(const RtfWord& word, std::optional<int> parameter) {
        const bool isOn = parameter != 0;
        RtfGroup& now = group();
        switch (word.action) {
        case Action::bold: now.bold = isOn; return true;
        case Action::italic: now.italic = isOn; return true;
        case Action::underline: now.underline = isOn; return true;
        case Action::noUnderline: now.underline = false; return true;
        case Action::strikethrough: now.strikethrough = isOn; return true;
        case Action::hidden: now.hidden = isOn; return true;
        case Action::size:
            now.halfPoints = std::clamp(parameter.value_or(24), 0, largestHalfPoints);
            return true;
        case Action::color: now.color = parameter.value_or(0); return true;
        case Action::font:
            if (goesTo(Destination::fontTable)) {
                fonts_.begin(parameter.value_or(0));
            } else {
                now.font = parameter.value_or(0);
            }
            return true;
        case Action::plain:
            now.bold = now.italic = now.underline = now.strikethrough = now.hidden = false;
            now.halfPoints = now.color = 0;
            now.font = -1;
            return true;
        default: return false;
        }
    }

    bool takeParagraphWord(const RtfWord& word, std::optional<int> parameter) {
        RtfGroup& now = group();
        if (goesTo(Destination::listOverrideTable)) return false;
        switch (word.action) {
        case Action::paragraphDefaults:
            now.alignment = TextAlignment::left;
            now.list = now.level = 0;
            now.mark.reset();
            return true;
        case Action::alignment: now.alignment = static_cast<TextAlignment>(word.value); return true;
        case Action::list: now.list = parameter.value_or(0); return true;
        case Action::level:
            now.level = std::clamp(parameter.value_or(0), 0, ListItem::deepestLevel);
            return true;
        default: break;
        }
        const bool isBreak = word.action >= Action::paragraph && word.action <= Action::row;
        if (isBreak && isSeen()) takeBreak(word.action);
        return isBreak;
    }

    void takeBreak(Action action) {
        switch (action) {
        case Action::sectionEnd: body_.breakParagraph(look()); break;
        case Action::page:
            if (!body_.atParagraphStart()) body_.addText("\u2028", style(), look());
            break;
        case Action::cell: body_.endCell(); break;
        case Action::row: body_.endRow(look()); break;
        default: body_.endParagraph(look());
        }
    }

    void takeTableWord(const RtfWord& word, int parameter) {
        switch (word.action) {
        case Action::destination: begin(word.destination); break;
        case Action::fieldResult: beginLink(); break;
        case Action::codePage:
            if (word.value > 0 || parameter > 0) codePage_ = word.value > 0 ? word.value : parameter;
            break;
        default: break;
        }
        switch (group().destination) {
        case Destination::fontTable: return takeFontWord(word.action, parameter);
        case Destination::colorTable: return takeColorWord(word.action, parameter);
        case Destination::listTable: return takeListWord(word.action, parameter);
        case Destination::listOverrideTable: return takeOverrideWord(word.action, parameter);
        case Destination::oldList:
            if (word.action == Action::oldNumber) mark_ = ListItem::Kind::numbered;
            return;
        case Destination::picture: return takePictureWord(word.action, parameter);
        case Destination::attachment:
            if (word.action == Action::attachmentWidth) file_.width = parameter;
            if (word.action == Action::attachmentHeight) file_.height = parameter;
            return;
        default: return;
        }
    }

    void beginLink() {
        if (!goesTo(Destination::body)) return;
        std::string address = rtfLinkAddress(std::exchange(instruction_, {}));
        if (address.empty()) return;
        group().link = static_cast<int>(links_.size());
        links_.push_back(std::move(address));
    }

    void takeFontWord(Action action, int parameter) {
        if (action == Action::characterSet) fonts_.setCharacterSet(parameter);
        if (action == Action::fontCodePage) fonts_.setCodePage(parameter);
    }

    void takeColorWord(Action action, int parameter) {
        if (action == Action::red) colors_.setPart(&TextColor::red, parameter);
        if (action == Action::green) colors_.setPart(&TextColor::green, parameter);
        if (action == Action::blue) colors_.setPart(&TextColor::blue, parameter);
    }

    void takeListWord(Action action, int parameter) {
        if (action == Action::listBegin) lists_.beginList();
        if (action == Action::listLevel) lists_.beginLevel();
        if (action == Action::listFormat) lists_.setFormat(parameter);
        if (action == Action::listId) lists_.endList(parameter);
    }

    void takeOverrideWord(Action action, int parameter) {
        if (action == Action::listId) lists_.beginOverride(parameter);
        if (action == Action::list) lists_.endOverride(parameter);
    }

    void takePictureWord(Action action, int parameter) {
        if (action == Action::pictureWidth) picture_.width = parameter;
        if (action == Action::pictureHeight) picture_.height = parameter;
        if (action == Action::pictureScaleX) picture_.scaleX = parameter;
        if (action == Action::pictureScaleY) picture_.scaleY = parameter;
    }

    RtfTokens tokens_;
    RtfBody body_;
    RtfText pending_;
    RtfFonts fonts_;
    RtfColors colors_;
    RtfLists lists_;
    std::vector<std::string> links_;
    int codePage_ = text::CodePage::westernEuropean;

    std::vector<RtfGroup> groups_ = std::vector<RtfGroup>(1);
    std::size_t excess_ = 0;
    int fallbackLeft_ = 0;
    bool expectsAttachmentCharacter_ = false;
    bool isIgnorable_ = false;

    // What is being read into other destinations than the body.
    std::string instruction_;
    RtfPicture picture_;
    RtfNamedFile file_;
    ListItem::Kind mark_ = ListItem::Kind::bulleted;
};

} // namespace

std::optional<RichText> RtfReader::read(std::string_view rtf) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (rtf.starts_with(byteOrderMark)) rtf.remove_prefix(byteOrderMark.size());
    rtf = text::trim(rtf);
    if (!rtf.starts_with("{\\rtf")) return std::nullopt;
    return RtfParser(rtf).parse();
}

} // namespace lumnara
