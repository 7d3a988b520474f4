#pragma once

#include "app/tracking/TrackingPage.h"

#include <QTreeWidget>

namespace lumnara {

/// The report: a line a desktop with a bar for its time, idle time in a softer tone, and its apps below it
/// when it is opened. The page outlives it.
class UsageList : public QTreeWidget {
public:
    explicit UsageList(TrackingPage& page);

    /// Shows what the page has now.
    void show(const TrackingPage& page);

private:
    /// Of all lines: the page around the list scrolls.
    int wholeHeight() const;

    TrackingPage& page_;
};

} // namespace lumnara
