#pragma once

#include <filesystem>
#include <optional>

namespace lumnara {

/// Keeps a second program from writing the same folder: an advisory lock on a file inside it, which the
/// system drops when this process ends, however it ends.
class FolderLock {
public:
    /// Creates the folder (mode 0700) when it is missing. Nothing when another process holds the lock.
    /// Throws std::system_error when the folder or the file can't be made.
    static std::optional<FolderLock> acquire(const std::filesystem::path& folder);

    FolderLock(FolderLock&& other) noexcept;
    FolderLock& operator=(FolderLock&&) = delete;
    ~FolderLock();

private:
    explicit FolderLock(int descriptor) : descriptor_(descriptor) {}

    int descriptor_ = -1;
};

} // namespace lumnara
