#include "app/tracking/TrackingPage.h"

#include "core/base/Files.h"
#include "core/model/PlatformWords.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <system_error>
#include <utility>

namespace lumnara {

TrackingExportError::TrackingExportError(std::filesystem::path path, const std::string& reason)
    : Failure(fmt::format("The report could not be written to {}: {}.", path.string(), reason)),
      path_(std::move(path)) {}

TrackingPage::TrackingPage(const async::Loop& loop, TrackingStore* store, UsageSampler* sampler,
                           PlatformKind kind)
    : heading_(fmt::format("Records how long you spend on each desktop and in each app there. Everything "
                           "stays on {} in a local database.",
                           wordsOf(kind).computer)),
      loop_(loop),
      store_(store),
      sampler_(sampler) {}

std::vector<UsageRow> TrackingPage::expandedApps() const {
    std::vector<UsageRow> apps;
    if (expandedSpace_)
        std::ranges::copy_if(appRows_, std::back_inserter(apps),
                             [&](const UsageRow& row) { return row.spaceKey == *expandedSpace_; });
    return apps;
}

void TrackingPage::reload() {
    rows_.clear();
    appRows_.clear();
    sessions_.clear();
    if (store_) {
        const DateRange shown = rangeOf(range_, loop_.date(), calendar());
        try {
            auto rows = store_->usage(shown.from, shown.to, false);
            auto appRows = store_->usage(shown.from, shown.to, true);
            sessions_ = store_->sessions();
            rows_ = std::move(rows);
            appRows_ = std::move(appRows);
        } catch (const DatabaseError&) {
            // Shown as empty; the next reload tries again.
        }
    }
    changed.emit();
}

void TrackingPage::setRange(RangeChoice range) {
    range_ = range;
    reload();
}

void TrackingPage::toggleExpanded(const std::string& spaceKey) {
    expandedSpace_ = expandedSpace_ == spaceKey ? std::nullopt : std::optional(spaceKey);
    changed.emit();
}

void TrackingPage::startSession() {
    change([this](UsageSampler& sampler) {
        sampler.startSession(sessionName.empty() ? defaultSessionName : sessionName);
    });
}

void TrackingPage::pauseSession() {
    change([](UsageSampler& sampler) { sampler.pauseSession(); });
}

void TrackingPage::endSession() {
    change([](UsageSampler& sampler) { sampler.endSession(); });
}

void TrackingPage::change(const std::function<void(UsageSampler&)>& edit) {
    if (!sampler_) return;
    try {
        edit(*sampler_);
    } catch (...) {
        reload();
        throw;
    }
    reload();
}

std::string TrackingPage::proposedFileName() const { return fmt::format("Lumnara-{}.csv", rawValue(range_)); }

void TrackingPage::exportTo(const std::filesystem::path& path) const {
    if (!store_) return;
    const text::Calendar used = calendar();
    const std::string report =
        CSVExporter::exportText(*store_, rangeOf(range_, loop_.date(), used), includeApps, grouping, used);
    try {
        replaceFile(path, report);
    } catch (const std::system_error& error) {
        throw TrackingExportError(path, error.code().message());
    }
}

} // namespace lumnara
