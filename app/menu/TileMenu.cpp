#include "app/menu/TileMenu.h"

#include "app/links/LinkMenu.h"

#include <utility>

namespace lumnara {

std::vector<DesktopMenuItem> tileMenu(const DesktopCatalog& catalog, const Desktop& desktop, bool canAdd) {
    using Kind = DesktopMenuItem::Kind;
    DesktopMenuItem rename = DesktopMenuItem::line(Kind::rename, "Rename…");
    rename.desktop = desktop;
    const bool isDimmed = desktop.record && desktop.record->isDimmed;
    DesktopMenuItem dim = DesktopMenuItem::line(Kind::dim, isDimmed ? "Stop Dimming" : "Dim");
    dim.desktop = desktop;
    dim.isChecked = isDimmed;
    std::vector<DesktopMenuItem> menu{std::move(rename), std::move(dim)};
    if (!LinkMenu::hasPlace(catalog)) return menu;

    std::vector<DesktopMenuItem> links = LinkMenu::lines(catalog, desktop);
    if (auto added = canAdd ? LinkMenu::newPartner(catalog, desktop) : std::nullopt)
        links.push_back(*std::move(added));
    // Nothing of a link would show before links hold at all.
    if (catalog.linkMode() == DisplayLinkMode::independent) links = {LinkMenu::mode(catalog)};
    if (links.empty()) return menu;
    menu.push_back(DesktopMenuItem::line(Kind::separator));
    menu.insert(menu.end(), links.begin(), links.end());
    return menu;
}

} // namespace lumnara
