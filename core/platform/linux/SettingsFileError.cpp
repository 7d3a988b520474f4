#include "core/platform/linux/SettingsFileError.h"

#include <fmt/format.h>
#include <utility>

namespace lumnara {

SettingsFileError::SettingsFileError(Case which, std::string sentence)
    : Failure(std::move(sentence)),
      which_(which) {}

SettingsFileError SettingsFileError::damaged(const std::filesystem::path& kept) {
    return {Case::damaged,
            fmt::format("Your settings could not be read. The file was damaged. It was kept at {} "
                        "and Lumnara started with the settings of a new installation.",
                        kept.string())};
}

SettingsFileError SettingsFileError::notLoaded(const std::string& reason) {
    return {Case::notLoaded,
            fmt::format("settings.json could not be read: {}. Settings are not being saved until it can.",
                        reason)};
}

} // namespace lumnara
