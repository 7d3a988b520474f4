#pragma once

#include "core/async/DelayedWork.h"
#include "core/async/Loop.h"
#include "core/base/KeptFile.h"
#include "core/platform/linux/FileWatch.h"
#include "core/platform/linux/SettingsFileError.h"
#include "core/seams/DefaultsStore.h"

#include <filesystem>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace lumnara {

/// The settings in one file, a flat JSON object. Data stands as {"data": "<text>"}, each byte as the
/// character U+0000 to U+00FF of its number.
///
/// A change is on disk `saveDelay` seconds after the first of a burst, so that a slider costs a few writes a
/// second and a crash little. Each write reads the file again and changes only the keys that were set here:
/// what others wrote stays, also values of types that we don't know. A file that others change is picked up
/// at once.
///
/// A damaged file is moved aside, at the start or when it would be written over; one that breaks or goes
/// while the program runs leaves the settings as they were. A file that can't be read is never written over:
/// changes then live in memory until it can. Failures to write are logged and tried again with the next
/// change.
class JsonDefaultsStore : public DefaultsStore {
public:
    static constexpr double saveDelay = 0.25;

    /// Loads the file; never fails. The folder is made with the first write.
    JsonDefaultsStore(async::Loop& loop, std::filesystem::path file);
    JsonDefaultsStore(const JsonDefaultsStore&) = delete;
    JsonDefaultsStore& operator=(const JsonDefaultsStore&) = delete;
    /// Saves what isn't saved yet.
    ~JsonDefaultsStore() override;

    /// What was wrong with the file at the start.
    const std::optional<SettingsFileError>& loadError() const { return loadError_; }

    std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;
    void remove(std::string_view key) override;

    /// Writes now what isn't written yet, and waits for it.
    void saveNow();

private:
    void load();
    void reload();
    void change(std::string_view key, nlohmann::json value);
    async::DelayedWork::Work saveWork();
    void finishSave(const nlohmann::json& changes);
    void report(std::string trouble);

    async::Loop& loop_;
    KeptFile kept_;
    std::optional<SettingsFileError> loadError_;
    /// What value() shows: the file as last read, with the unsaved changes over it.
    std::unique_ptr<nlohmann::json> values_;
    /// What was set here and isn't known to be in the file yet; null stands for a removed key.
    std::unique_ptr<nlohmann::json> unsaved_;
    /// Why the file was last not taken over; a file that stays bad is logged once.
    std::string lastTrouble_;
    FileWatch watch_;
    /// By which work that returns from the queue sees that the store is gone.
    const std::shared_ptr<JsonDefaultsStore*> self_;
    /// A save that is to come stays as it is: a slider that is dragged for long is saved all the same.
    async::DelayedWork saving_;
};

} // namespace lumnara
