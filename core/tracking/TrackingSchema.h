#pragma once

#include "core/tracking/Database.h"

namespace lumnara::TrackingSchema {

/// Brings the schema up to date, each change once and in a transaction of its own. Throws DatabaseError:
/// newerSchema for a database that has seen changes unknown here, which is left as it is.
void migrate(Database& database);

} // namespace lumnara::TrackingSchema
