#pragma once

#include "core/base/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace lumnara {

/// A moment as the database keeps it: UTC, "2026-01-05 09:00:00.000". Such texts sort as the moments do; one
/// outside the years 0 to 9999, which would not, becomes the nearest inside.
std::string databaseText(Date date);
/// Reads that form and the one without a fraction, which SQL's datetime() writes; nothing for other texts.
std::optional<Date> databaseDate(std::string_view text);

} // namespace lumnara
