#include "app/links/LinkMenu.h"

#include "core/names/DisplayLink.h"
#include "core/names/NameRules.h"

#include <algorithm>
#include <fmt/format.h>
#include <string>
#include <utility>

namespace lumnara::LinkMenu {

namespace {

using LineKind = DesktopMenuItem::Kind;

DesktopMenuItem linkLine(std::string title, LinkRequest request) {
    DesktopMenuItem item = DesktopMenuItem::line(LineKind::link, std::move(title));
    item.request = std::move(request);
    return item;
}

bool isGrouped(const DesktopCatalog& catalog, const Desktop& desktop) {
    return DisplayLink::groupOf(*catalog.store().file(), desktop.spaceKey).has_value();
}

bool isSameNamed(const Desktop& one, const Desktop& other) {
    return one.isNamed() && other.isNamed() &&
           NameRules::normalizedKey(one.record->name) == NameRules::normalizedKey(other.record->name);
}

/// What the desktop may be linked with, of the same name first. The display is told where there is a choice
/// of displays.
std::vector<DesktopMenuItem> partners(const DesktopCatalog& catalog, const Desktop& desktop) {
    const auto file = catalog.store().file();
    const std::vector<DisplayDesktops>& displays = catalog.displays.get();
    std::vector<DesktopMenuItem> namesakes;
    std::vector<DesktopMenuItem> others;
    for (const DisplayDesktops& shown : displays) {
        if (shown.display == desktop.display) continue;
        for (const Desktop& partner : shown.desktops) {
            if (partner.space.kind != SpaceKind::user || DisplayLink::groupOf(*file, partner.spaceKey))
                continue;
            std::string title = partner.displayName();
            if (displays.size() > 2) title += fmt::format(" ({})", shown.name);
            (isSameNamed(partner, desktop) ? namesakes : others)
                .push_back(linkLine(std::move(title), LinkRequest::with(desktop, partner.spaceKey)));
        }
    }
    namesakes.insert(namesakes.end(), others.begin(), others.end());
    return namesakes;
}

} // namespace

bool hasPlace(const DesktopCatalog& catalog) {
    return std::ranges::count_if(catalog.displays.get(),
                                 [](const DisplayDesktops& shown) { return !shown.display.isMain(); }) >= 2;
}

DesktopMenuItem mode(const DesktopCatalog& catalog) {
    DesktopMenuItem item = DesktopMenuItem::line(LineKind::linkMode, "Link Displays");
    item.isChecked = catalog.linkMode() == DisplayLinkMode::linked;
    return item;
}

std::vector<DesktopMenuItem> lines(const DesktopCatalog& catalog, const Desktop& desktop) {
    std::vector<DesktopMenuItem> menu;
    if (isGrouped(catalog, desktop)) {
        menu.push_back(linkLine("Unlink", LinkRequest::unlink(desktop)));
    } else if (desktop.space.kind == SpaceKind::user) {
        DesktopMenuItem with = DesktopMenuItem::line(LineKind::submenu, "Link with");
        with.children = partners(catalog, desktop);
        if (!with.children.empty()) menu.push_back(std::move(with));
    }
    return menu;
}

std::optional<DesktopMenuItem> newPartner(const DesktopCatalog& catalog, const Desktop& desktop) {
    if (desktop.space.kind != SpaceKind::user || isGrouped(catalog, desktop)) return std::nullopt;
    return linkLine("New desktop, linked to this one", LinkRequest::create(desktop));
}

} // namespace lumnara::LinkMenu
