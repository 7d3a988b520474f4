#include "core/automation/AutomationStore.h"

#include "core/automation/AutomationCodec.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <utility>

namespace lumnara {

AutomationStore::AutomationStore(async::Loop& loop, std::filesystem::path url)
    : loop_(loop),
      kept_(std::move(url)) {}

void AutomationStore::load() {
    loadError_.reset();
    unsaved_ = nullptr;
    AutomationFile file;
    const auto decode = [&](const std::string& text) {
        try {
            file = AutomationCodec::decode(text);
        } catch (const AutomationStoreError& newer) {
            loadError_ = newer;
            throw KeptFile::Newer();
        }
    };
    const auto reading = kept_.load(decode, loop_.date());
    if (reading.found != KeptFile::Found::newer) file_ = std::move(file);
    if (reading.found == KeptFile::Found::damage && reading.failure)
        loadError_ = AutomationStoreError::notLoaded(reading.damage +
                                                     "; could not move it aside: " + reading.failure->what());
    else if (reading.failure)
        loadError_ = AutomationStoreError::notLoaded(reading.failure->what());
    else if (reading.aside)
        recovered_ = reading.aside;
    changed.emit();
}

void AutomationStore::save() {
    try {
        if (loadError_) throw AutomationStoreError(*loadError_);
        kept_.replace(AutomationCodec::encode(file_));
        unsaved_ = nullptr;
    } catch (...) {
        unsaved_ = std::current_exception();
        throw;
    }
}

std::vector<Automation> AutomationStore::automations(std::string_view forSpaceKey) const {
    std::vector<Automation> found;
    std::copy_if(file_.automations.begin(), file_.automations.end(), std::back_inserter(found),
                 [&](const Automation& each) { return each.spaceKey == forSpaceKey; });
    return found;
}

const Automation* AutomationStore::find(std::string_view id) const {
    const auto found = std::find_if(file_.automations.begin(), file_.automations.end(),
                                    [&](const Automation& each) { return each.id == id; });
    return found == file_.automations.end() ? nullptr : &*found;
}

void AutomationStore::upsert(Automation automation) {
    if (const Automation* known = find(automation.id))
        file_.automations[static_cast<std::size_t>(known - file_.automations.data())] = std::move(automation);
    else
        file_.automations.push_back(std::move(automation));
    saveChange();
}

void AutomationStore::insert(Automation automation, std::size_t place) {
    const auto at = static_cast<std::ptrdiff_t>(std::min(place, file_.automations.size()));
    file_.automations.insert(file_.automations.begin() + at, std::move(automation));
    saveChange();
}

void AutomationStore::remove(std::string_view id) {
    removeIf([&](const Automation& each) { return each.id == id; });
}

void AutomationStore::removeAll(std::string_view forSpaceKey) {
    removeIf([&](const Automation& each) { return each.spaceKey == forSpaceKey; });
}

void AutomationStore::removeIf(const std::function<bool(const Automation&)>& isMeant) {
    if (std::erase_if(file_.automations, isMeant) > 0) saveChange();
}

void AutomationStore::saveChange() {
    changed.emit();
    save();
}

} // namespace lumnara
