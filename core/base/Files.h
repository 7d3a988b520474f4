#pragma once

#include "core/base/Date.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace lumnara {

/// Reads a whole file. Throws std::system_error with the system's description.
std::string readFile(const std::filesystem::path& path);

/// Replaces a file whole or not at all: a temporary file beside it, fsync, rename, fsync of the folder.
/// Writes through a symbolic link, creates missing folders with mode 0700, keeps the mode of the old file
/// and gives a new one 0600. Throws std::system_error; the old file then stands unchanged.
void replaceFile(const std::filesystem::path& path, std::string_view contents);

/// Removes what replacements of this file that a crash ended left beside it. One that is going on, in any
/// program, is left alone. Never fails.
void finishReplacement(const std::filesystem::path& path);

/// Creates a folder and those above it that are missing, with mode 0700. Throws std::system_error.
void makeFolder(const std::filesystem::path& folder);

/// The contents of files by their names.
using FolderContents = std::map<std::string, std::string>;

/// Makes a folder hold these files and nothing else, whole or not at all: a new folder beside it, fsync of
/// its files and of itself, an exchange of the two names, fsync of the parent, removal of the old one. The
/// folder gets the mode 0700, its files 0600; missing parents are created. What stood at `path` may also be
/// a file. Throws std::system_error; the old one then stands unchanged.
///
/// Where the file system can't exchange names, a crash may leave the old folder under another name;
/// finishReplacements() gives it back its own.
void replaceFolder(const std::filesystem::path& path, const FolderContents& files);

/// Removes a file or a folder with all it holds: gone by its name first, so that no part of it ever stands
/// there alone. Nothing happens when it is missing. Throws std::system_error; it then stands unchanged.
void removeWhole(const std::filesystem::path& path);

/// Puts in order what the functions above left in `folder` when the program stopped in the midst of them.
/// Only while nobody else writes there. Never fails; what can't be removed stays.
void finishReplacements(const std::filesystem::path& folder);

/// A name for a damaged file beside it that is not taken: "<name>.corrupt-2026-01-05T09-00-00Z", with
/// "-2" and so on behind it when that is.
std::filesystem::path freeAsidePath(const std::filesystem::path& path, Date now);

/// Moves a damaged file out of the way to its freeAsidePath(), which it returns. Throws std::system_error;
/// the file then stands where it was.
std::filesystem::path moveAside(const std::filesystem::path& path, Date now);

} // namespace lumnara
