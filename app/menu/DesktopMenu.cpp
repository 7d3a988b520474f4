#include "app/menu/DesktopMenu.h"

#include "app/DisplayName.h"
#include "app/links/LinkMenu.h"
#include "core/catalog/DesktopAppearance.h"

#include <cstddef>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

using LineKind = DesktopMenuItem::Kind;

std::optional<std::string> colorOf(const Desktop& desktop) {
    if (!desktop.record) return std::nullopt;
    if (desktop.record->color) return desktop.record->color;
    if (const auto suggested = DesktopAppearance::suggestedColor(desktop.record->name))
        return std::string(*suggested);
    return std::nullopt;
}

DesktopMenuItem lineFor(const Desktop& desktop) {
    DesktopMenuItem item = DesktopMenuItem::line(LineKind::desktop, desktop.displayName());
    item.isCurrent = desktop.isCurrent;
    item.isLinked = desktop.isLinked();
    item.isDimmed = desktop.record && desktop.record->isDimmed;
    item.color = colorOf(desktop);
    item.desktop = desktop;
    return item;
}

void addDesktops(const DesktopCatalog& catalog, std::vector<DesktopMenuItem>& menu) {
    const std::vector<DisplayDesktops>& displays = catalog.displays.get();
    for (const DisplayDesktops& display : displays) {
        if (displays.size() > 1) menu.push_back(DesktopMenuItem::line(LineKind::header, display.name));
        for (const Desktop& desktop : display.desktops) menu.push_back(lineFor(desktop));
        menu.push_back(DesktopMenuItem::line(LineKind::separator));
    }
}

DesktopMenuItem linksMenu(const DesktopCatalog& catalog) {
    DesktopMenuItem links = DesktopMenuItem::line(LineKind::submenu, "Links");
    links.children.push_back(LinkMenu::mode(catalog));
    if (!catalog.isLinkAvailable()) return links;
    if (const Desktop* focused = catalog.focusedDesktop()) {
        const auto lines = LinkMenu::lines(catalog, *focused);
        if (!lines.empty()) {
            links.children.push_back(DesktopMenuItem::line(LineKind::separator));
            links.children.push_back(DesktopMenuItem::line(LineKind::header, focused->displayName()));
            links.children.insert(links.children.end(), lines.begin(), lines.end());
        }
    }
    if (!catalog.linkCandidates().empty()) {
        links.children.push_back(DesktopMenuItem::line(LineKind::separator));
        links.children.push_back(DesktopMenuItem::line(LineKind::linkAll, "Link All of the Same Name"));
    }
    return links;
}

/// What can be done with the desktops, below the list of them.
void addEdits(const DesktopCatalog& catalog, std::vector<DesktopMenuItem>& menu) {
    const std::size_t before = menu.size();
    if (const Desktop* focused = catalog.focusedDesktop()) {
        DesktopMenuItem rename = DesktopMenuItem::line(LineKind::rename, "Rename Desktop…");
        rename.desktop = *focused;
        menu.push_back(std::move(rename));
    }
    if (LinkMenu::hasPlace(catalog)) menu.push_back(linksMenu(catalog));
    if (menu.size() > before) menu.push_back(DesktopMenuItem::line(LineKind::separator));
}

} // namespace

std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog) {
    std::vector<DesktopMenuItem> menu;
    if (const auto& unreadable = catalog.lastError.get()) {
        menu.push_back(DesktopMenuItem::line(LineKind::message, unreadable->sentence));
        menu.push_back(DesktopMenuItem::line(LineKind::separator));
    } else {
        addDesktops(catalog, menu);
        addEdits(catalog, menu);
    }
    menu.push_back(DesktopMenuItem::line(LineKind::openBoard, "Open Board"));
    menu.push_back(DesktopMenuItem::line(LineKind::settings, "Settings…"));
    menu.push_back(DesktopMenuItem::line(LineKind::quit, "Quit"));
    return menu;
}

std::string trayToolTip(const DesktopCatalog& catalog) {
    if (const auto& unreadable = catalog.lastError.get()) return unreadable->sentence;
    const Desktop* focused = catalog.focusedDesktop();
    if (!focused) return "Lumnara";
    if (catalog.displays->size() < 2) return focused->displayName();
    return fmt::format("{} ({})", focused->displayName(), displayNameIn(catalog, focused->display));
}

} // namespace lumnara
