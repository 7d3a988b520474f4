#include "app/menubar/DesktopMenu.h"

#include "app/DisplayName.h"
#include "core/catalog/DesktopAppearance.h"

#include <fmt/format.h>

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
    item.isDimmed = desktop.record && desktop.record->isDimmed;
    item.color = colorOf(desktop);
    item.desktop = desktop;
    return item;
}

} // namespace

std::vector<DesktopMenuItem> desktopMenu(const DesktopCatalog& catalog) {
    std::vector<DesktopMenuItem> menu;
    if (const auto& unreadable = catalog.lastError.get()) {
        menu.push_back(line(LineKind::message, unreadable->sentence));
        menu.push_back(line(LineKind::separator));
    }
    const std::vector<DisplayDesktops>& displays = catalog.displays.get();
    for (const DisplayDesktops& display : displays) {
        if (displays.size() > 1) menu.push_back(line(LineKind::header, display.name));
        for (const Desktop& desktop : display.desktops) menu.push_back(lineFor(desktop));
        menu.push_back(line(LineKind::separator));
    }
    menu.push_back(line(LineKind::openBoard, "Open Board"));
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
