#include "app/menu/DesktopMenuCommands.h"

namespace lumnara {

DesktopMenuCommands::DesktopMenuCommands(AppState& state, std::function<void(std::string)> onRefused)
    : state_(state),
      links_(state.loop(), state.catalog(), state.notices(), state.platform().arranger.get(),
             std::move(onRefused)) {}

bool DesktopMenuCommands::carryOut(const DesktopMenuItem& chosen) {
    using Kind = DesktopMenuItem::Kind;
    switch (chosen.kind) {
    case Kind::desktop: state_.switchTo(*chosen.desktop); return true;
    case Kind::dim: state_.catalog().setDimmed(chosen.desktop->key, !chosen.isChecked); return true;
    case Kind::linkMode:
        state_.settings().displayLinkMode.set(chosen.isChecked ? DisplayLinkMode::independent
                                                               : DisplayLinkMode::linked);
        return true;
    case Kind::link: links_.carryOut(*chosen.request); return true;
    case Kind::linkAll: links_.linkAll(); return true;
    case Kind::header:
    case Kind::message:
    case Kind::separator:
    case Kind::submenu:
    case Kind::rename:
    case Kind::openBoard:
    case Kind::settings:
    case Kind::quit: break;
    }
    return false;
}

} // namespace lumnara
