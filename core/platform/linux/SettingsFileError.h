#pragma once

#include "core/base/Failure.h"

#include <filesystem>
#include <string>

namespace lumnara {

/// What the user has to know of settings.json.
class SettingsFileError : public Failure {
public:
    enum class Case { damaged, notLoaded };

    /// The file was moved aside, to `kept`.
    static SettingsFileError damaged(const std::filesystem::path& kept);
    static SettingsFileError notLoaded(const std::string& reason);

    Case which() const { return which_; }
    bool operator==(const SettingsFileError& other) const {
        return which_ == other.which_ && sentence() == other.sentence();
    }

private:
    SettingsFileError(Case which, std::string sentence);

    Case which_;
};

} // namespace lumnara
