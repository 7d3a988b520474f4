#include "app/names/NamePublication.h"

#include "core/names/DisplayLink.h"

#include <string>
#include <vector>

namespace lumnara {

NamePublication::NamePublication(DesktopCatalog& catalog, DesktopNamePublisher* publisher)
    : catalog_(catalog),
      publisher_(publisher),
      readingBegan_(catalog.snapshot.subscribe([this](const auto&) { isReading_ = true; })),
      displaysChanged_(catalog.displays.subscribe([this](const auto&) {
          if (!isReading_) publish();
      })) {}

void NamePublication::endReading() {
    isReading_ = false;
    publish();
}

/// The whole list each time; the publisher knows what is already so.
void NamePublication::publish() {
    if (!publisher_) return;
    const auto file = catalog_.store().file();
    std::vector<PublishedDesktop> kept;
    for (const DisplayDesktops& shown : catalog_.displays.get())
        for (const Desktop& desktop : shown.desktops)
            // A member of a group has the group's record, which it must find again while links don't hold.
            if (desktop.record || DisplayLink::groupOf(*file, desktop.spaceKey))
                kept.push_back({desktop.spaceKey, desktop.space.id, desktop.display,
                                desktop.record ? desktop.record->name : std::string()});
    publisher_->publish(kept);
}

} // namespace lumnara
