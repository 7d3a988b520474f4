#pragma once

#include "core/base/Date.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace lumnara {

/// Reads a whole file. Throws std::system_error with the system's description.
std::string readFile(const std::filesystem::path& path);

/// Replaces a file whole or not at all: a temporary file beside it, fsync, rename, fsync of the folder.
/// Writes through a symbolic link, creates missing folders with mode 0700, keeps the mode of the old file
/// and gives a new one 0600. Throws std::system_error; the old file then stands unchanged.
void replaceFile(const std::filesystem::path& path, std::string_view contents);

/// A name for a damaged file beside it that is not taken: "<name>.corrupt-2026-01-05T09-00-00Z", with
/// "-2" and so on behind it when that is.
std::filesystem::path freeAsidePath(const std::filesystem::path& path, Date now);

/// Moves a damaged file out of the way to its freeAsidePath(), which it returns. Throws std::system_error;
/// the file then stands where it was.
std::filesystem::path moveAside(const std::filesystem::path& path, Date now);

} // namespace lumnara
