#pragma once

#include "app/overlay/Notices.h"

#include <string>

namespace lumnara {

class AutomationStore;
class NameStore;
class TimeTracking;

/// What is told at the start is read among much else, and may hold a path.
void tellAtStart(Notices& notices, std::string sentence);

/// Tells which of what the program keeps could not be read, or was damaged.
void tellOfFiles(Notices& notices, const NameStore& names, const AutomationStore& automations,
                 const TimeTracking& tracking);

} // namespace lumnara
