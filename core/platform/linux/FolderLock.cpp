#include "core/platform/linux/FolderLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

std::optional<FolderLock> FolderLock::acquire(const std::filesystem::path& folder) {
    if (std::filesystem::create_directories(folder)) ::chmod(folder.c_str(), 0700);
    const auto file = folder / ".lock";
    FolderLock lock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (lock.descriptor_ < 0) throw std::system_error(errno, std::generic_category(), file.string());
    if (::flock(lock.descriptor_, LOCK_EX | LOCK_NB) == 0) return lock;
    if (errno == EWOULDBLOCK) return std::nullopt;
    throw std::system_error(errno, std::generic_category(), file.string());
}

FolderLock::FolderLock(FolderLock&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}

FolderLock::~FolderLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

} // namespace lumnara
