#pragma once

#include "core/catalog/DisplayLinkMode.h"
#include "core/model/PlatformWords.h"

#include <array>
#include <cstddef>
#include <fmt/format.h>
#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// What the menu bar shows.
enum class MenuBarStyle {
    currentName, ///< the name of the current desktop
    indicators,  ///< a row of marks, one per desktop
    nameLetters, ///< short letters of the names
    iconOnly,    ///< the plain icon
};

/// The keys that open the Board when they are tapped together and nothing else is.
enum class BoardChord { controlOption, optionShift, optionCommand, optionFunction, optionTwice };

/// The key that has to be held for dragging a window to another desktop.
enum class DragModifier { option, shift, control };

/// What settings call a chord.
inline std::string displayText(BoardChord chord, const PlatformWords& words) {
    const std::string option(words.option);
    switch (chord) {
    case BoardChord::controlOption: return fmt::format("{} + {}", words.control, option);
    case BoardChord::optionShift: return fmt::format("{} + {}", option, words.shift);
    case BoardChord::optionCommand: return fmt::format("{} + {}", option, words.command);
    case BoardChord::optionFunction: return fmt::format("{} + {}", option, words.function);
    case BoardChord::optionTwice: break;
    }
    return option + ", twice";
}

/// The texts under which the cases of an enumeration are stored, in their order.
template <class Choice> inline constexpr std::array<std::string_view, 0> choiceTexts{};
template <>
inline constexpr std::array<std::string_view, 4> choiceTexts<MenuBarStyle>{"currentName", "indicators",
                                                                           "nameLetters", "iconOnly"};
template <>
inline constexpr std::array<std::string_view, 5> choiceTexts<BoardChord>{
    "controlOption", "optionShift", "optionCommand", "optionFunction", "optionTwice"};
template <>
inline constexpr std::array<std::string_view, 3> choiceTexts<DragModifier>{"option", "shift", "control"};
template <>
inline constexpr std::array<std::string_view, 2> choiceTexts<DisplayLinkMode>{"independent", "linked"};

template <class Choice> std::string_view choiceText(Choice choice) {
    return choiceTexts<Choice>[static_cast<std::size_t>(choice)];
}

/// Nothing for a text that no case is stored under.
template <class Choice> std::optional<Choice> choiceOf(std::string_view text) {
    for (std::size_t i = 0; i < choiceTexts<Choice>.size(); ++i)
        if (choiceTexts<Choice>[i] == text) return static_cast<Choice>(i);
    return std::nullopt;
}

} // namespace lumnara
