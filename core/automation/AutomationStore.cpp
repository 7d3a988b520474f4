#include "core/automation/AutomationStore.h"

#include "core/automation/AutomationCodec.h"
#include "core/base/Files.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <system_error>
#include <utility>

namespace lumnara {

namespace {

bool isMissing(const std::system_error& error) {
    return error.code() == std::errc::no_such_file_or_directory;
}

} // namespace

AutomationStore::AutomationStore(async::Loop& loop, std::filesystem::path url)
    : loop_(loop),
      url_(std::move(url)) {}

void AutomationStore::load() {
    finishReplacement(url_);
    loadError_.reset();
    unsaved_ = nullptr;
    read();
    changed.emit();
}

void AutomationStore::read() {
    std::string text;
    try {
        text = readFile(url_);
    } catch (const std::system_error& error) {
        file_ = {};
        if (!isMissing(error)) loadError_ = AutomationStoreError::notLoaded(error.what());
        return;
    }
    try {
        file_ = AutomationCodec::decode(text);
    } catch (const AutomationStoreError& newer) {
        loadError_ = newer;
    } catch (const std::exception& damage) {
        recover(damage.what());
    }
}

void AutomationStore::recover(const std::string& damage) {
    file_ = {};
    try {
        recovered_ = moveAside(url_, loop_.date());
    } catch (const std::system_error& error) {
        loadError_ = AutomationStoreError::notLoaded(damage + "; could not move it aside: " + error.what());
    }
}

void AutomationStore::save() {
    try {
        if (loadError_) throw AutomationStoreError(*loadError_);
        replaceFile(url_, AutomationCodec::encode(file_));
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
