#pragma once

#include "core/names/NameStoreFile.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A link makes desktops of several displays one desktop to the user: a group of NameStoreFile::links, whose
/// record stands under "link:<id>". Pure functions; any thread.
namespace lumnara::DisplayLink {

/// The group's Space keys by display uuid.
using Members = NameStoreFile::Map<std::string>;

/// The text behind "link:", or nothing for any other key. Points into the key.
std::optional<std::string_view> id(std::string_view fromKey);
/// The first 8 characters of a fresh uuid.
std::string newID();
/// "link:<id>".
std::string key(std::string_view id);

/// The members of a group, or null. Points into the file.
const Members* members(const NameStoreFile& file, std::string_view id);
bool contains(const Members& members, std::string_view spaceKey);
/// The id of the first group with this Space, or nothing. Points into the file.
std::optional<std::string_view> groupOf(const NameStoreFile& file, std::string_view spaceKey);
/// The Space keys in the order of the displays' uuids, the given one moved to the end.
std::vector<std::string> ordered(const Members& members, std::string_view last);
/// Whether there are two Spaces to link. One that stands there for two displays is one.
bool isGroup(const Members& members);

/// Takes a group and its record out of the file.
void remove(NameStoreFile& file, std::string_view id);

/// As much of a key or uuid as a log line shows.
std::string_view brief(std::string_view text);

} // namespace lumnara::DisplayLink
