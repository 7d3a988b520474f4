#include "app/links/DesktopLinker.h"

#include "core/async/Task.h"
#include "core/base/Log.h"
#include "core/names/DisplayLink.h"
#include "core/names/NameRules.h"
#include "core/text/Text.h"

#include <fmt/format.h>
#include <utility>
#include <vector>

namespace lumnara {

namespace {

/// The displays but for the desktop's own, in display order.
std::vector<DisplayDesktops> otherDisplays(const DesktopCatalog& catalog, const Desktop& desktop) {
    std::vector<DisplayDesktops> others = *catalog.displays;
    std::erase_if(others, [&](const DisplayDesktops& shown) {
        return text::equalsIgnoringCase(shown.display.uuid, desktop.display.uuid);
    });
    return others;
}

/// The desktop of that display that bears the same name and is in no group, or null.
const Desktop* unlinkedNamesake(const DisplayDesktops& display, const Desktop& desktop,
                                const NameStoreFile& file) {
    if (!desktop.isNamed()) return nullptr;
    const std::string wanted = NameRules::normalizedKey(desktop.record->name);
    for (const Desktop& other : display.desktops)
        if (other.isNamed() && NameRules::normalizedKey(other.record->name) == wanted &&
            !DisplayLink::groupOf(file, other.spaceKey))
            return &other;
    return nullptr;
}

} // namespace

DesktopLinker::DesktopLinker(DesktopCatalog& catalog, DesktopArranger* arranger, PlatformKind kind)
    : catalog_(catalog),
      arranger_(arranger),
      words_(wordsOf(kind)) {}

async::Task<std::string> DesktopLinker::carryOut(LinkRequest request) {
    switch (request.kind) {
    case LinkRequest::Kind::create: co_return co_await create(request.desktop);
    case LinkRequest::Kind::with: co_return link(request.desktop, request.spaceKey);
    case LinkRequest::Kind::unlink: break;
    }
    co_return unlink(request.desktop);
}

void DesktopLinker::fail(Failure::Case which, std::string name) const {
    throw Failure(which, words_, std::move(name));
}

/// The desktop as it is now. Throws notFound.
const Desktop& DesktopLinker::live(const std::string& spaceKey) const {
    if (const Desktop* desktop = catalog_.desktopOfSpace(spaceKey)) return *desktop;
    fail(Failure::Case::notFound);
}

std::string DesktopLinker::link(const Desktop& requested, const std::string& spaceKey) {
    const Desktop first = live(requested.spaceKey);
    const Desktop second = live(spaceKey);
    if (!catalog_.link(first.spaceKey, second.spaceKey)) fail(Failure::Case::sameDisplay);
    log(fmt::format("Lumnara link: {} ({}) with {} on {}", first.displayName(),
                    DisplayLink::brief(first.spaceKey), DisplayLink::brief(second.spaceKey),
                    DisplayLink::brief(second.display.uuid)));
    const std::string name = live(first.spaceKey).displayName();
    if (second.isNamed()) return fmt::format("“{}” is now on both screens.", name);
    return fmt::format("Displays linked. {} “{}” and both screens go there.", words_.callByName, name);
}

async::Task<std::string> DesktopLinker::create(Desktop requested) {
    const Desktop desktop = live(requested.spaceKey);
    const std::vector<DisplayDesktops> others = otherDisplays(catalog_, desktop);
    if (others.empty()) fail(Failure::Case::noOtherDisplay);

    const auto contents = catalog_.store().file();
    for (const DisplayDesktops& other : others) {
        const Desktop* namesake = unlinkedNamesake(other, desktop, *contents);
        if (!namesake) continue;
        const std::string display = other.name.empty() ? "the other display" : other.name;
        log(fmt::format(
            "Lumnara link: {} already has an unlinked {} ({}); linking that instead of adding one", display,
            namesake->displayName(), DisplayLink::brief(namesake->spaceKey)));
        link(desktop, namesake->spaceKey);
        co_return fmt::format("{} already had “{}”, so the two are linked; no desktop was added.", display,
                              namesake->displayName());
    }

    if (!arranger_) fail(Failure::Case::cannotCreate);
    const DisplayID display = others.front().display;
    const std::vector<SpaceID> made = co_await arranger_->create(display);
    catalog_.refresh();
    if (made.size() == 1)
        for (const Desktop& added : catalog_.desktops(display.uuid))
            if (added.space.id == made.front()) co_return link(desktop, added.spaceKey);
    fail(Failure::Case::notIdentified);
}

std::string DesktopLinker::unlink(const Desktop& requested) {
    const Desktop desktop = live(requested.spaceKey);
    const auto contents = catalog_.store().file();
    const auto id = DisplayLink::groupOf(*contents, desktop.spaceKey);
    if (!id) fail(Failure::Case::notLinked, desktop.displayName());
    const std::string other =
        DisplayLink::ordered(*DisplayLink::members(*contents, *id), desktop.spaceKey).front();
    catalog_.unlink(desktop.spaceKey, "unlinked by the user");
    return fmt::format("The desktop linked to it on the other display goes back to its own name, “{}”",
                       catalog_.displayName(other));
}

} // namespace lumnara
