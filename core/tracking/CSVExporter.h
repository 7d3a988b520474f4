#pragma once

#include "core/tracking/TrackingRange.h"

#include <string>

namespace lumnara::CSVExporter {

/// The usage of each period of the range as comma-separated text (RFC 4180, CR LF at the end of each row)
/// under a header row. Minutes are rounded to the nearest whole one, a half away from zero. Throws
/// DatabaseError.
std::string exportText(TrackingStore& store, DateRange range, bool includeApps, CSVGrouping grouping,
                       const text::Calendar& calendar);

} // namespace lumnara::CSVExporter
