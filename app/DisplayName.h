#pragma once

#include "core/catalog/DesktopCatalog.h"
#include "core/text/Text.h"

#include <string>

namespace lumnara {

/// The human name of a display as the catalog shows it; empty for one that it doesn't show.
inline std::string displayNameIn(const DesktopCatalog& catalog, const DisplayID& display) {
    for (const DisplayDesktops& shown : catalog.displays.get())
        if (text::equalsIgnoringCase(shown.display.uuid, display.uuid)) return shown.name;
    return {};
}

} // namespace lumnara
