#include "core/base/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void failFile(const char* doing, const fs::path& path, int error = errno) {
    throw std::system_error(error, std::generic_category(), std::string(doing) + " " + path.string());
}

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }

    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    /// Closes now and says whether that worked: a delayed write error shows only here.
    bool close() { return ::close(std::exchange(fd_, -1)) == 0; }

private:
    int fd_;
};

/// A file beside the one to be replaced; it goes again unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
        : name_((target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string()),
          file_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (!file_.valid()) failFile("create", name_);
    }
    ~TemporaryFile() {
        if (!renamed_) ::unlink(name_.c_str());
    }

    void setMode(mode_t mode) {
        if (::fchmod(file_.get(), mode) != 0) failFile("chmod", name_);
    }
    void write(std::string_view contents) {
        while (!contents.empty()) {
            const ssize_t written = ::write(file_.get(), contents.data(), contents.size());
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) failFile("write", name_);
            contents.remove_prefix(static_cast<std::size_t>(written));
        }
        if (::fsync(file_.get()) != 0) failFile("fsync", name_);
        if (!file_.close()) failFile("close", name_);
    }
    void renameTo(const fs::path& target) {
        if (::rename(name_.c_str(), target.c_str()) != 0) failFile("rename", target);
        renamed_ = true;
    }

private:
    std::string name_;
    FileDescriptor file_;
    bool renamed_ = false;
};

/// The file that a chain of symbolic links ends at, whether or not it exists.
fs::path followLinks(fs::path path) {
    constexpr int maxLinks = 40; // as the kernel has it
    for (int i = 0; i < maxLinks; ++i) {
        std::error_code ignored;
        if (!fs::is_symlink(fs::symlink_status(path, ignored))) return path;
        path = path.parent_path() / fs::read_symlink(path);
    }
    failFile("follow", path, ELOOP);
}

void createFolder(const fs::path& folder) {
    if (folder.empty() || fs::is_directory(folder)) return;
    createFolder(folder.parent_path());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) failFile("mkdir", folder);
}

} // namespace

std::string readFile(const fs::path& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.valid()) failFile("open", path);
    std::string contents;
    char buffer[16'384];
    for (;;) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) failFile("read", path);
        if (count == 0) return contents;
        contents.append(buffer, static_cast<std::size_t>(count));
    }
}

void replaceFile(const fs::path& path, std::string_view contents) {
    const fs::path target = followLinks(fs::absolute(path));
    createFolder(target.parent_path());

    struct stat old{};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    TemporaryFile temporary(target);
    temporary.setMode(exists ? old.st_mode & 07777 : 0600);
    temporary.write(contents);
    temporary.renameTo(target);

    // The file is replaced by now; where a folder can't be synced, a power cut may still bring the old one
    // back.
    const FileDescriptor folder(::open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.valid()) ::fsync(folder.get());
}

fs::path freeAsidePath(const fs::path& path, Date now) {
    std::string stamp = now.iso8601();
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    const std::string base = path.string() + ".corrupt-" + stamp;
    fs::path aside = base;
    std::error_code ignored;
    for (int n = 2; fs::exists(fs::symlink_status(aside, ignored)); ++n)
        aside = base + "-" + std::to_string(n);
    return aside;
}

fs::path moveAside(const fs::path& path, Date now) {
    fs::path aside = freeAsidePath(path, now);
    if (::rename(path.c_str(), aside.c_str()) != 0) failFile("move aside", path);
    return aside;
}

} // namespace lumnara
