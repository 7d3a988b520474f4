#pragma once

#include "core/base/Date.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace lumnara {

/// A file in which the program keeps something. Its owner says what its text means and which of the states
/// below stops it from saving; this class reads it, moves it aside when it is damaged and replaces it.
///
/// Every call waits for the disk. One thread at a time.
class KeptFile {
public:
    enum class Found { nothing, contents, newer, damage, unreadable };

    /// What stood at the path, and what became of it.
    struct Reading {
        Found found = Found::nothing;
        /// Why the decoder refused a damaged file; empty for the others.
        std::string damage{};
        /// Where load() moved a damaged file to; with a `failure`, where replace() will.
        std::optional<std::filesystem::path> aside{};
        /// Why the file could not be read, or not be moved aside. It may hold something that is wanted still.
        std::optional<std::system_error> failure{};
    };

    /// Thrown by a decoder for the file of a later version, which has to stay as it is.
    class Newer : public std::exception {};

    /// Takes the text in. Throws Newer, or anything else for damage.
    using Decode = std::function<void(const std::string& text)>;

    explicit KeptFile(std::filesystem::path path) : path_(std::move(path)) {}

    const std::filesystem::path& path() const { return path_; }

    /// For the program's start: clears away what a crash left beside the file, reads it, and moves it aside
    /// when it is damaged, under the dated name of freeAsidePath(). Never fails.
    Reading load(const Decode& decode, Date now);

    /// Reads it and touches nothing. Never fails.
    Reading read(const Decode& decode) const;

    /// Replaces it whole or not at all, as replaceFile() does. Damage that load() could not move aside is
    /// moved first. Throws std::system_error; what stood there then stands there still, or aside.
    void replace(std::string_view contents);

private:
    void moveDamageAside();

    const std::filesystem::path path_;
    /// Where the damage goes that still stands at the path.
    std::optional<std::filesystem::path> aside_;
};

} // namespace lumnara
