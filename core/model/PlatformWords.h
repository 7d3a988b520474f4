#pragma once

#include "core/model/PlatformKind.h"

#include <string_view>

namespace lumnara {

/// The words that a sentence on screen takes from the platform: its name, its keys, and what one does there.
struct PlatformWords {
    std::string_view system; ///< what shows the desktops; begins a sentence
    std::string_view computer;
    std::string_view callByName;   ///< how one goes to a desktop by its name; before the name
    std::string_view linkingPlace; ///< where desktops are linked by hand
    std::string_view control, option, shift, command, function; ///< keys
};

constexpr PlatformWords wordsOf(PlatformKind kind) {
    if (kind == PlatformKind::mac)
        return {.system = "macOS",
                .computer = "this Mac",
                .callByName = "Say",
                .linkingPlace = "Settings, Desktops",
                .control = "Control",
                .option = "Option",
                .shift = "Shift",
                .command = "Command",
                .function = "Fn (Globe)"};
    // Nothing listens there yet.
    return {.system = "The window manager",
            .computer = "this computer",
            .callByName = "Choose",
            .linkingPlace = "the menu of its tile on the Board",
            .control = "Control",
            .option = "Alt",
            .shift = "Shift",
            .command = "Super",
            .function = "Fn"};
}

} // namespace lumnara
