#include "app/board/BoardKeyTable.h"

#include "app/board/QuickSwitcherModel.h"
#include "core/text/Text.h"

#include <cstddef>
#include <string>

namespace lumnara {

namespace {

using EffectKind = KeyEffect::Kind;

KeyEffect effect(EffectKind kind) { return {kind, std::nullopt}; }

KeyEffect switchTo(std::optional<Desktop> desktop) {
    if (!desktop) return effect(EffectKind::done);
    return {EffectKind::switches, std::move(desktop)};
}

bool isPrintable(const std::string& typed) {
    for (std::size_t at = 0; at < typed.size();) {
        const char32_t c = text::decodeNext(typed, at);
        if (c < 0x20 || (c >= 0x7F && c < 0xA0)) return false;
    }
    return !typed.empty();
}

KeyEffect applyEscape(QuickSwitcherModel& model) {
    if (model.renamingKey())
        model.cancelRename();
    else if (model.expandedKey())
        model.toggleExpanded();
    else
        return effect(EffectKind::closesBoard);
    return effect(EffectKind::done);
}

KeyEffect applyReturn(const KeyPress& press, QuickSwitcherModel& model) {
    if (model.renamingKey()) {
        model.commitRename();
    } else if (!press.modifiers.command) {
        return switchTo(model.selectedDesktop());
    } else if (model.selectedKey()) {
        model.beginRename(*model.selectedKey());
    }
    return effect(EffectKind::done);
}

KeyEffect applyDelete(const KeyPress& press, QuickSwitcherModel& model) {
    if (model.renamingKey()) {
        model.setRenameText(std::string(text::withoutLast(model.renameText())));
    } else if (press.modifiers.command) {
        // Where the desktop can be deleted the key means that, and leaves the query alone.
        if (!model.selectionCanBeDeleted()) model.setQuery({});
    } else if (!model.query().empty()) {
        model.setQuery(std::string(text::withoutLast(model.query())));
    } else {
        return effect(EffectKind::fallsThrough);
    }
    return effect(EffectKind::done);
}

KeyEffect applyText(const KeyPress& press, QuickSwitcherModel& model) {
    if (press.modifiers.command || press.modifiers.control || !isPrintable(press.text))
        return effect(EffectKind::fallsThrough);
    if (model.renamingKey()) {
        model.setRenameText(model.renameText() + press.text);
        return effect(EffectKind::done);
    }
    const bool isDigit = press.text.size() == 1 && press.text[0] >= '1' && press.text[0] <= '9';
    if (isDigit && model.query().empty())
        if (auto desktop = model.desktopAtDigit(press.text[0] - '0')) return switchTo(std::move(desktop));
    model.setQuery(model.query() + press.text);
    return effect(EffectKind::done);
}

/// The keys that move about while no name is being edited; a field has uses of its own for them.
bool applyMove(KeyCode key, QuickSwitcherModel& model) {
    switch (key) {
    case KeyCode::left: model.moveSelection(-1, 0); return true;
    case KeyCode::right: model.moveSelection(1, 0); return true;
    case KeyCode::home: model.selectFirst(); return true;
    case KeyCode::end: model.selectLast(); return true;
    case KeyCode::pageUp: model.movePage(-1); return true;
    case KeyCode::pageDown: model.movePage(1); return true;
    case KeyCode::tab:
        if (!model.canCycleScope()) return false;
        model.cycleScope();
        return true;
    case KeyCode::space:
        if (!model.query().empty()) return false;
        model.toggleExpanded();
        return true;
    default: return false;
    }
}

KeyEffect applyCommand(const KeyPress& press, QuickSwitcherModel& model) {
    switch (*press.key) {
    case KeyCode::d: model.toggleDimmed(); return effect(EffectKind::done);
    case KeyCode::a: // there is nothing to select all of
        return effect(EffectKind::done);
    case KeyCode::l: return effect(EffectKind::opensMenu);
    case KeyCode::w: return effect(EffectKind::closesBoard);
    default: return effect(EffectKind::fallsThrough);
    }
}

} // namespace

KeyEffect applyKey(const KeyPress& press, QuickSwitcherModel& model) {
    if (!press.key) return applyText(press, model);
    switch (*press.key) {
    case KeyCode::escape: return applyEscape(model);
    case KeyCode::returnKey:
    case KeyCode::keypadEnter: return applyReturn(press, model);
    case KeyCode::deleteKey: return applyDelete(press, model);
    case KeyCode::up: model.moveSelection(0, -1); return effect(EffectKind::done);
    case KeyCode::down: model.moveSelection(0, 1); return effect(EffectKind::done);
    case KeyCode::contextMenu: return effect(EffectKind::opensMenu);
    default: break;
    }
    if (!model.renamingKey() && applyMove(*press.key, model)) return effect(EffectKind::done);
    return press.modifiers.command ? applyCommand(press, model) : applyText(press, model);
}

} // namespace lumnara
