#pragma once

#include "core/base/Failure.h"

#include <filesystem>
#include <string>

namespace lumnara {

/// What the user has to know of settings.json.
class SettingsFileError : public FailureOf<SettingsFileError, std::string> {
public:
    enum class Case { damaged, notLoaded };
    static constexpr Sentence<Case> sentences[] = {
        {Case::damaged, "Your settings could not be read. The file was damaged. It was kept at {} "
                        "and Lumnara started with the settings of a new installation."},
        {Case::notLoaded, "settings.json could not be read: {}. Settings are not being saved until it can."},
    };

    /// The file was moved aside, to `kept`.
    static SettingsFileError damaged(const std::filesystem::path& kept) {
        return SettingsFileError(Case::damaged, kept.string());
    }
    static SettingsFileError notLoaded(std::string reason) {
        return SettingsFileError(Case::notLoaded, std::move(reason));
    }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
