#include "core/base/Files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

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

private:
    int fd_;
};

void writeAndSync(const FileDescriptor& file, const fs::path& path, std::string_view contents) {
    while (!contents.empty()) {
        const ssize_t written = ::write(file.get(), contents.data(), contents.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) failFile("write", path);
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    if (::fsync(file.get()) != 0) failFile("fsync", path);
}

// Beside a target named "x" stand ".x.new-123456", what will take its place, and ".x.replaced", what had it.
constexpr std::string_view newMark = ".new-";
constexpr std::string_view oldMark = ".replaced";
constexpr std::size_t uniqueLength = 6; // as mkstemp has it

std::string newNameTemplate(const fs::path& target) {
    const std::string name = "." + target.filename().string();
    return target.parent_path() / (name + std::string(newMark) + std::string(uniqueLength, 'X'));
}

fs::path oldName(const fs::path& target) {
    return target.parent_path() / ("." + target.filename().string() + std::string(oldMark));
}

/// Throws std::system_error when the disk doesn't say.
bool stands(const fs::path& path) { return fs::exists(fs::symlink_status(path)); }

void removeQuietly(const fs::path& path) {
    std::error_code ignored;
    fs::remove_all(path, ignored);
}

/// What is renamed can still be lost in a power cut where the folder can't be synced; that is no failure.
void syncFolderQuietly(const fs::path& path) {
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.valid()) ::fsync(folder.get());
}

/// A file beside the one to be replaced; it goes again unless it was renamed. It is locked for as long as its
/// writer lives, by which a file that is being written is told from what a crash left.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
        : name_(newNameTemplate(target)),
          file_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (!file_.valid()) failFile("create", name_);
        ::flock(file_.get(), LOCK_EX | LOCK_NB); // a file system without locks has to do without
    }
    ~TemporaryFile() {
        if (!renamed_) ::unlink(name_.c_str());
    }

    void setMode(mode_t mode) {
        if (::fchmod(file_.get(), mode) != 0) failFile("chmod", name_);
    }
    void write(std::string_view contents) { writeAndSync(file_, name_, contents); }
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
        if (!fs::is_symlink(fs::symlink_status(path))) return path;
        path = path.parent_path() / fs::read_symlink(path);
    }
    failFile("follow", path, ELOOP);
}

/// A folder beside the one to be replaced; what has its name in the end goes with it.
class TemporaryFolderBeside {
public:
    explicit TemporaryFolderBeside(const fs::path& target) : name_(newNameTemplate(target)) {
        if (::mkdtemp(name_.data()) == nullptr) failFile("create", name_);
    }
    TemporaryFolderBeside(const TemporaryFolderBeside&) = delete;
    ~TemporaryFolderBeside() { removeQuietly(name_); }

    void write(const FolderContents& files) {
        for (const auto& [name, contents] : files) {
            const fs::path path = fs::path(name_) / name;
            const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
            if (!file.valid()) failFile("create", path);
            writeAndSync(file, path, contents);
        }
        const FileDescriptor folder(::open(name_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!folder.valid()) failFile("open", name_);
        // Some file systems can't sync a folder, and say so.
        if (::fsync(folder.get()) != 0 && errno != EINVAL) failFile("fsync", name_);
    }

    void takePlaceOf(const fs::path& target) {
        if (!stands(target)) {
            rename(name_, target);
        } else if (::renameat2(AT_FDCWD, name_.c_str(), AT_FDCWD, target.c_str(), RENAME_EXCHANGE) != 0) {
            if (errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP) failFile("exchange", target);
            takePlaceInSteps(target);
        }
    }

    /// Takes it in, to go with this folder.
    void swallow(const fs::path& path) { rename(path, fs::path(name_) / path.filename()); }

private:
    void takePlaceInSteps(const fs::path& target) {
        const fs::path old = oldName(target);
        rename(target, old);
        try {
            rename(name_, target);
        } catch (...) {
            ::rename(old.c_str(), target.c_str());
            throw;
        }
        removeQuietly(old);
    }

    static void rename(const fs::path& from, const fs::path& to) {
        if (::rename(from.c_str(), to.c_str()) != 0) failFile("rename", to);
    }

    std::string name_;
};

/// Removes what had the target's name, or gives it back when the target is gone.
void settleOld(const fs::path& target) {
    const fs::path old = oldName(target);
    if (!stands(target)) {
        ::rename(old.c_str(), target.c_str());
    } else if (stands(old)) {
        removeQuietly(old);
    }
}

/// The name that ".<name>.new-123456" is to take; empty for any other.
std::string nameToTake(const std::string& leftover) {
    const std::size_t mark = leftover.rfind(newMark);
    const bool isOne = leftover.starts_with('.') && mark != std::string::npos && mark > 1 &&
                       mark + newMark.size() + uniqueLength == leftover.size();
    return isOne ? leftover.substr(1, mark - 1) : std::string();
}

/// Whether its writer is at it, in this program or in another one.
bool isBeingWritten(const fs::path& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return file.valid() && ::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored))
        entries.push_back(entry->path());
    return entries;
}

void removeLeftover(const fs::path& leftover) {
    if (!isBeingWritten(leftover)) removeQuietly(leftover);
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
    makeFolder(target.parent_path());

    struct stat old{};
    const bool exists = ::stat(target.c_str(), &old) == 0;
    TemporaryFile temporary(target);
    temporary.setMode(exists ? old.st_mode & 07777 : 0600);
    temporary.write(contents);
    temporary.renameTo(target);

    syncFolderQuietly(target.parent_path());
}

void makeFolder(const fs::path& folder) {
    if (folder.empty() || fs::is_directory(folder)) return;
    makeFolder(folder.parent_path());
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) failFile("mkdir", folder);
}

void replaceFolder(const fs::path& path, const FolderContents& files) {
    const fs::path target = fs::absolute(path);
    makeFolder(target.parent_path());
    settleOld(target);
    TemporaryFolderBeside temporary(target);
    temporary.write(files);
    temporary.takePlaceOf(target);
    syncFolderQuietly(target.parent_path());
}

void removeWhole(const fs::path& path) {
    const fs::path target = fs::absolute(path);
    settleOld(target);
    if (!stands(target)) return;
    TemporaryFolderBeside(target).swallow(target);
    syncFolderQuietly(target.parent_path());
}

void finishReplacements(const fs::path& folder) {
    for (const fs::path& entry : entriesOf(folder)) {
        const std::string name = entry.filename();
        const bool isOld =
            name.starts_with('.') && name.ends_with(oldMark) && name.size() > 1 + oldMark.size();
        try {
            if (isOld) settleOld(folder / name.substr(1, name.size() - 1 - oldMark.size()));
        } catch (const std::system_error&) { // it stays for the next start
        }
        if (!nameToTake(name).empty()) removeLeftover(entry);
    }
}

void finishReplacement(const fs::path& path) {
    try {
        const fs::path target = followLinks(fs::absolute(path));
        for (const fs::path& entry : entriesOf(target.parent_path()))
            if (nameToTake(entry.filename()) == target.filename()) removeLeftover(entry);
    } catch (const std::system_error&) { // the disk doesn't say where it is
    }
}

fs::path freeAsidePath(const fs::path& path, Date now) {
    std::string stamp = now.iso8601();
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    const std::string base = path.string() + ".corrupt-" + stamp;
    fs::path aside = base;
    for (int n = 2; stands(aside); ++n) aside = base + "-" + std::to_string(n);
    return aside;
}

fs::path moveAside(const fs::path& path, Date now) {
    fs::path aside = freeAsidePath(path, now);
    if (::rename(path.c_str(), aside.c_str()) != 0) failFile("move aside", path);
    return aside;
}

} // namespace lumnara
