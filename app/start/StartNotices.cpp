#include "app/start/StartNotices.h"

#include "app/tracking/TimeTracking.h"
#include "core/automation/AutomationStore.h"
#include "core/names/NameStore.h"

#include <fmt/format.h>
#include <utility>

namespace lumnara {

void tellAtStart(Notices& notices, std::string sentence) {
    constexpr double seconds = 15.0;
    notices.show(std::move(sentence), seconds);
}

void tellOfFiles(Notices& notices, const NameStore& names, const AutomationStore& automations,
                 const TimeTracking& tracking) {
    const auto tellDamaged = [&](const char* what, const auto& keptAt, const char* startedWith) {
        if (keptAt)
            tellAtStart(notices, fmt::format("Your {} could not be read. The file was damaged. It was kept "
                                             "at {} and Lumnara started {}.",
                                             what, keptAt->string(), startedWith));
    };
    tellDamaged("desktop names", names.recoveredFromCorruptFile(), "with an empty list");
    if (const auto& error = names.loadError()) tellAtStart(notices, error->sentence());
    tellDamaged("automations", automations.recoveredFromCorruptFile(), "without any");
    if (const auto& error = automations.loadError()) tellAtStart(notices, error->sentence());
    if (const auto& failure = tracking.failure()) tellAtStart(notices, "Time is not recorded. " + *failure);
}

} // namespace lumnara
