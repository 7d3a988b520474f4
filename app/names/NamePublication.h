#pragma once

#include "core/async/Signal.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/seams/DesktopNamePublisher.h"

namespace lumnara {

/// Keeps the window manager told of what the user calls the desktops: at each edit, and once after each
/// reading, since a window manager that was away may have come back without the names. Main thread.
class NamePublication {
public:
    /// Both outlive this object; `publisher` is null where nobody is to be told.
    NamePublication(DesktopCatalog& catalog, DesktopNamePublisher* publisher);

    /// A reading has ended.
    void endReading();

private:
    void publish();

    DesktopCatalog& catalog_;
    DesktopNamePublisher* const publisher_;
    /// What changes now is told at the end of the reading.
    bool isReading_ = false;
    async::Subscription readingBegan_;
    async::Subscription displaysChanged_;
};

} // namespace lumnara
