#pragma once

#include "core/async/Loop.h"
#include "core/async/Signal.h"
#include "core/automation/Automation.h"
#include "core/automation/AutomationStoreError.h"
#include "core/base/KeptFile.h"

#include <cstddef>
#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace lumnara {

/// Owns automations.json. Every change holds in memory at once and is saved before the call returns; where
/// saving fails, the call throws and the change still holds in memory. Main thread. The loop outlives it.
class AutomationStore {
public:
    /// Reads nothing yet: call load().
    AutomationStore(async::Loop& loop, std::filesystem::path url);
    AutomationStore(const AutomationStore&) = delete;
    AutomationStore& operator=(const AutomationStore&) = delete;

    static std::filesystem::path defaultURL(const std::filesystem::path& dataFolder) {
        return dataFolder / "automations.json";
    }

    const std::filesystem::path& url() const { return kept_.path(); }
    const AutomationFile& file() const { return file_; }
    /// While it is set, nothing is saved.
    const std::optional<AutomationStoreError>& loadError() const { return loadError_; }
    /// Why the last save failed, so that the file lacks what is in memory; null when it succeeded.
    const std::exception_ptr& unsaved() const { return unsaved_; }
    /// Where a damaged file was moved to, if there was one.
    const std::optional<std::filesystem::path>& recoveredFromCorruptFile() const { return recovered_; }
    /// After every change of the contents, saved or not.
    async::Signal<> changed;

    /// Reads the file anew; never fails. A missing one is empty, one of a newer schema stays untouched, a
    /// damaged one is moved aside.
    void load();
    /// Throws loadError(), or the file system's error.
    void save();

    /// Those of one desktop, in file order.
    std::vector<Automation> automations(std::string_view forSpaceKey) const;
    /// Null when there is none. Points into the contents: for until the next change.
    const Automation* find(std::string_view id) const;

    // Changes; they throw as save() does.

    /// Replaces the one with the same id, or appends.
    void upsert(Automation automation);
    /// Puts one before that place of the file; past the end means the end. Its id is new.
    void insert(Automation automation, std::size_t place);
    /// Nothing happens for a missing id.
    void remove(std::string_view id);
    /// For a desktop that is gone. Nothing happens, and nothing is written, where it has none.
    void removeAll(std::string_view forSpaceKey);

private:
    void removeIf(const std::function<bool(const Automation&)>& isMeant);
    void saveChange();

    async::Loop& loop_;
    KeptFile kept_;
    AutomationFile file_;
    std::optional<AutomationStoreError> loadError_;
    std::exception_ptr unsaved_;
    std::optional<std::filesystem::path> recovered_;
};

} // namespace lumnara
