#include "app/qt/windows/Keys.h"

#include <QKeyEvent>

#include <array>
#include <utility>

namespace lumnara {
namespace {

constexpr std::array<std::pair<int, KeyCode>, 54> codesByKey{{
    {Qt::Key_A, KeyCode::a},
    {Qt::Key_B, KeyCode::b},
    {Qt::Key_C, KeyCode::c},
    {Qt::Key_D, KeyCode::d},
    {Qt::Key_E, KeyCode::e},
    {Qt::Key_F, KeyCode::f},
    {Qt::Key_G, KeyCode::g},
    {Qt::Key_H, KeyCode::h},
    {Qt::Key_I, KeyCode::i},
    {Qt::Key_J, KeyCode::j},
    {Qt::Key_K, KeyCode::k},
    {Qt::Key_L, KeyCode::l},
    {Qt::Key_M, KeyCode::m},
    {Qt::Key_N, KeyCode::n},
    {Qt::Key_O, KeyCode::o},
    {Qt::Key_P, KeyCode::p},
    {Qt::Key_Q, KeyCode::q},
    {Qt::Key_R, KeyCode::r},
    {Qt::Key_S, KeyCode::s},
    {Qt::Key_T, KeyCode::t},
    {Qt::Key_U, KeyCode::u},
    {Qt::Key_V, KeyCode::v},
    {Qt::Key_W, KeyCode::w},
    {Qt::Key_X, KeyCode::x},
    {Qt::Key_Y, KeyCode::y},
    {Qt::Key_Z, KeyCode::z},
    {Qt::Key_0, KeyCode::digit0},
    {Qt::Key_1, KeyCode::digit1},
    {Qt::Key_2, KeyCode::digit2},
    {Qt::Key_3, KeyCode::digit3},
    {Qt::Key_4, KeyCode::digit4},
    {Qt::Key_5, KeyCode::digit5},
    {Qt::Key_6, KeyCode::digit6},
    {Qt::Key_7, KeyCode::digit7},
    {Qt::Key_8, KeyCode::digit8},
    {Qt::Key_9, KeyCode::digit9},
    {Qt::Key_Comma, KeyCode::comma},
    {Qt::Key_Space, KeyCode::space},
    {Qt::Key_Return, KeyCode::returnKey},
    {Qt::Key_Enter, KeyCode::keypadEnter},
    {Qt::Key_Tab, KeyCode::tab},
    {Qt::Key_Backtab, KeyCode::tab},
    {Qt::Key_Backspace, KeyCode::deleteKey},
    {Qt::Key_Delete, KeyCode::forwardDelete},
    {Qt::Key_Escape, KeyCode::escape},
    {Qt::Key_Home, KeyCode::home},
    {Qt::Key_End, KeyCode::end},
    {Qt::Key_PageUp, KeyCode::pageUp},
    {Qt::Key_PageDown, KeyCode::pageDown},
    {Qt::Key_Left, KeyCode::left},
    {Qt::Key_Right, KeyCode::right},
    {Qt::Key_Up, KeyCode::up},
    {Qt::Key_Down, KeyCode::down},
    {Qt::Key_Menu, KeyCode::contextMenu},
}};

/// The scan code of the key right of Escape, and the keys from there on, row by row, as a US keyboard
/// labels them. X11 and Wayland count alike.
struct ScanRow {
    quint32 first;
    const char* labels;
};
constexpr std::array<ScanRow, 4> scanRows{
    {{10, "1234567890"}, {24, "qwertyuiop"}, {38, "asdfghjkl"}, {52, "zxcvbnm,"}}};

std::optional<KeyCode> codeOf(int key) {
    for (const auto& [qtKey, code] : codesByKey) {
        if (qtKey == key) return code;
    }
    return std::nullopt;
}

std::optional<KeyCode> codeAt(quint32 scanCode) {
    for (const ScanRow& row : scanRows) {
        const std::string_view labels(row.labels);
        if (scanCode < row.first || scanCode >= row.first + labels.size()) continue;
        // Qt names letters by their capitals, and digits and the comma by themselves.
        return codeOf(QChar(labels[scanCode - row.first]).toUpper().unicode());
    }
    return std::nullopt;
}

} // namespace

KeyPress keyPressOf(const QKeyEvent& event) {
    KeyPress press;
    press.key = codeOf(event.key());
    if (!press.key) press.key = codeAt(event.nativeScanCode());
    const Qt::KeyboardModifiers held = event.modifiers();
    press.modifiers.shift = held.testFlag(Qt::ShiftModifier);
    press.modifiers.control = held.testFlag(Qt::ControlModifier);
    press.modifiers.option = held.testFlag(Qt::AltModifier);
    press.modifiers.command = held.testFlag(Qt::MetaModifier);
    press.text = event.text().toStdString();
    press.repeats = event.isAutoRepeat();
    return press;
}

bool isModifierKey(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_Super_L:
    case Qt::Key_Super_R:
    case Qt::Key_Hyper_L:
    case Qt::Key_Hyper_R:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock: return true;
    default: return false;
    }
}

} // namespace lumnara
