#include "app/menubar/DesktopMenu.h"

#include "app/DisplayName.h"
#include "core/catalog/DesktopAppearance.h"
#include "core/names/DisplayLink.h"
#include "core/names/NameRules.h"

#include <algorithm>
#include <cstddef>
#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

using LineKind = DesktopMenuItem::Kind;

DesktopMenuItem line(LineKind kind, std::string title = {}) {
    DesktopMenuItem item;
    item.kind = kind;
    item.title = std::move(title);
    return item;
}

std::optional<std::string> colorOf(const Desktop& desktop) {
    if (!desktop.record) return std::nullopt;
    if (desktop.record->color) return desktop.record->color;
    if (const auto suggested = DesktopAppearance::suggestedColor(desktop.record->name))
        return std::string(*suggested);
    return std::nullopt;
}

DesktopMenuItem lineFor(const Desktop& desktop) {
    DesktopMenuItem item = line(LineKind::desktop, desktop.displayName());
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
        if (displays.size() > 1) menu.push_back(line(LineKind::header, display.name));
        for (const Desktop& desktop : display.desktops) menu.push_back(lineFor(desktop));
        menu.push_back(line(LineKind::separator));
    }
}

DesktopMenuItem linkLine(std::string title, LinkRequest request) {
    DesktopMenuItem item = line(LineKind::link, std::move(title));
    item.request = std::move(request);
    return item;
}

bool isSameNamed(const Desktop& one, const Desktop& other) {
    return one.isNamed() && other.isNamed() &&
           NameRules::normalizedKey(one.record->name) == NameRules::normalizedKey(other.record->name);
}

/// What the desktop may be linked with, of the same name first. The display is told where there is a choice
/// of displays.
std::vector<DesktopMenuItem> linkPartners(const DesktopCatalog& catalog, const Desktop& desktop) {
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

/// What can be done with one desktop's link; none where nothing can.
std::vector<DesktopMenuItem> linkLines(const DesktopCatalog& catalog, const Desktop& desktop) {
    std::vector<DesktopMenuItem> lines;
    if (DisplayLink::groupOf(*catalog.store().file(), desktop.spaceKey)) {
        lines.push_back(linkLine("Unlink", LinkRequest::unlink(desktop)));
    } else if (desktop.space.kind == SpaceKind::user) {
        DesktopMenuItem with = line(LineKind::submenu, "Link with");
        with.children = linkPartners(catalog, desktop);
        if (!with.children.empty()) lines.push_back(std::move(with));
    }
    return lines;
}

DesktopMenuItem linksMenu(const DesktopCatalog& catalog) {
    DesktopMenuItem links = line(LineKind::submenu, "Links");
    DesktopMenuItem mode = line(LineKind::linkMode, "Link Displays");
    mode.isChecked = catalog.linkMode() == DisplayLinkMode::linked;
    links.children.push_back(std::move(mode));
    if (!catalog.isLinkAvailable()) return links;
    if (const Desktop* focused = catalog.focusedDesktop()) {
        const auto lines = linkLines(catalog, *focused);
        if (!lines.empty()) {
            links.children.push_back(line(LineKind::separator));
            links.children.push_back(line(LineKind::header, focused->displayName()));
            links.children.insert(links.children.end(), lines.begin(), lines.end());
        }
    }
    if (!catalog.linkCandidates().empty()) {
        links.children.push_back(line(LineKind::separator));
        links.children.push_back(line(LineKind::linkAll, "Link All of the Same Name"));
    }
    return links;
}

/// What can be done with the desktops, below the list of them.
void addEdits(const DesktopCatalog& catalog, std::vector<DesktopMenuItem>& menu) {
    const std::size_t before = menu.size();
    if (const Desktop* focused = catalog.focusedDesktop()) {
        DesktopMenuItem rename = line(LineKind::rename, "Rename Desktop…");
        rename.desktop = *focused;
        menu.push_back(std::move(rename));
    }
    const auto haveOwnDesktops = std::ranges::count_if(
        catalog.displays.get(), [](const DisplayDesktops& shown) { return !shown.display.isMain(); });
    if (haveOwnDesktops >= 2) menu.push_back(linksMenu(catalog));
    if (menu.size() > before) menu.push_back(line(LineKind::separator));
}

} // namespace

std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog) {
    std::vector<DesktopMenuItem> menu;
    if (const auto& unreadable = catalog.lastError.get()) {
        menu.push_back(line(LineKind::message, unreadable->sentence));
        menu.push_back(line(LineKind::separator));
    } else {
        addDesktops(catalog, menu);
        addEdits(catalog, menu);
    }
    menu.push_back(line(LineKind::openBoard, "Open Board"));
    menu.push_back(line(LineKind::settings, "Settings…"));
    menu.push_back(line(LineKind::quit, "Quit"));
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
