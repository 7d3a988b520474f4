#include "tests/support/FileCalls.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace lumnara::testing {

namespace {

namespace fs = std::filesystem;

/// What a call's arguments say of the file: an open descriptor, a path, or a folder's descriptor and a path.
enum class Naming { descriptor, path, pathInFolder };

struct WatchedCall {
    long number;
    CallKind kind;
    Naming naming;
};

constexpr WatchedCall watchedCalls[] = {
#ifdef SYS_open // architectures of later years have only the calls that take a folder
    {SYS_open, CallKind::open, Naming::path},
    {SYS_creat, CallKind::open, Naming::path},
    {SYS_rename, CallKind::rename, Naming::path},
    {SYS_unlink, CallKind::remove, Naming::path},
    {SYS_rmdir, CallKind::remove, Naming::path},
    {SYS_mkdir, CallKind::makeFolder, Naming::path},
    {SYS_stat, CallKind::status, Naming::path},
    {SYS_lstat, CallKind::status, Naming::path},
    {SYS_chmod, CallKind::mode, Naming::path},
#endif
    {SYS_openat, CallKind::open, Naming::pathInFolder},
    {SYS_read, CallKind::read, Naming::descriptor},
    {SYS_pread64, CallKind::read, Naming::descriptor},
    {SYS_getdents64, CallKind::read, Naming::descriptor},
    {SYS_write, CallKind::write, Naming::descriptor},
    {SYS_writev, CallKind::write, Naming::descriptor},
    {SYS_pwrite64, CallKind::write, Naming::descriptor},
    {SYS_fsync, CallKind::sync, Naming::descriptor},
    {SYS_fdatasync, CallKind::sync, Naming::descriptor},
    {SYS_renameat, CallKind::rename, Naming::pathInFolder},
    {SYS_renameat2, CallKind::rename, Naming::pathInFolder},
    {SYS_unlinkat, CallKind::remove, Naming::pathInFolder},
    {SYS_mkdirat, CallKind::makeFolder, Naming::pathInFolder},
    {SYS_ftruncate, CallKind::truncate, Naming::descriptor},
    {SYS_truncate, CallKind::truncate, Naming::path},
    {SYS_fstat, CallKind::status, Naming::descriptor},
    {SYS_newfstatat, CallKind::status, Naming::pathInFolder},
    {SYS_statx, CallKind::status, Naming::pathInFolder},
    {SYS_fchmod, CallKind::mode, Naming::descriptor},
    {SYS_fchmodat, CallKind::mode, Naming::pathInFolder},
};

constexpr int watchingFailed = -2;

[[noreturn]] void failWatching(const char* doing) {
    throw std::system_error(errno, std::generic_category(), doing);
}

/// From now on this thread's watched calls wait for an answer; gives the descriptor to answer at.
int listenToThisThread() {
    std::vector<sock_filter> filter = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const WatchedCall& call : watchedCalls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call.number), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return watchingFailed;
    const long listener =
        ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &program);
    return listener < 0 ? watchingFailed : static_cast<int>(listener);
}

std::string pathOfDescriptor(std::uint64_t argument) {
    const int fd = static_cast<int>(argument);
    std::error_code none;
    return fd == AT_FDCWD ? fs::current_path(none).string()
                          : fs::read_symlink("/proc/self/fd/" + std::to_string(fd), none).string();
}

/// The asking thread is one of this process: its memory and its descriptors are ours.
std::string pathOf(const WatchedCall& call, const seccomp_data& data) {
    const auto text = [&](int index) {
        const auto* path = reinterpret_cast<const char*>(data.args[index]);
        return std::string(path ? path : "");
    };
    if (call.naming == Naming::descriptor) return pathOfDescriptor(data.args[0]);
    if (call.naming == Naming::path) return text(0);
    const std::string path = text(1);
    return path.starts_with('/') ? path : pathOfDescriptor(data.args[0]) + "/" + path;
}

} // namespace

const char* nameOf(CallKind kind) {
    constexpr std::array<const char*, callKindCount> names = {"open",   "read",  "write",    "sync", "rename",
                                                              "remove", "mkdir", "truncate", "stat", "chmod"};
    return names[static_cast<std::size_t>(kind)];
}

void FileCalls::run(const std::function<void()>& work) {
    disarm();
    // No more than a number: a sanitizer's look at an object would be a call that nobody answers yet.
    constexpr int unknown = -1;
    std::atomic<int> listening = unknown;
    std::exception_ptr failure;
    std::jthread worker([&] {
        listening = listenToThisThread();
        listening.notify_one();
        if (listening == watchingFailed) return;
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
        disarm();
    });
    listening.wait(unknown);
    const int listener = listening;
    if (listener == watchingFailed) failWatching("seccomp");
    // Until the last watched thread is gone: even its end, behind the work, makes calls.
    for (pollfd ready{listener, POLLIN, 0}; !(ready.revents & POLLHUP);) {
        if (::poll(&ready, 1, -1) < 0 && errno != EINTR) failWatching("poll");
        if (ready.revents & POLLIN) answer(listener);
    }
    worker.join();
    ::close(listener);
    if (failure) std::rethrow_exception(failure);
}

void FileCalls::answer(int listener) {
    seccomp_notif asked{};
    if (::ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &asked) != 0) return; // it has gone meanwhile
    int error = 0;
    // Behind the work the asking thread may hold a lock of the allocator, which a look at the path would wait
    // for.
    const bool isLookedAt = isArmed();
    for (const WatchedCall& call : watchedCalls)
        if (isLookedAt && call.number == asked.data.nr &&
            pathOf(call, asked.data).starts_with(folder_.string()))
            error = errorOf(call.kind);
    seccomp_notif_resp reply{};
    reply.id = asked.id;
    reply.error = -error;
    reply.flags = error == 0 ? SECCOMP_USER_NOTIF_FLAG_CONTINUE : 0;
    ::ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &reply);
}

int FileCalls::errorOf(CallKind kind) {
    const std::lock_guard guard(lock_);
    if (!armed_) return 0;
    const int number = counts_[static_cast<std::size_t>(kind)]++;
    if (!fault_ || fault_->kind != kind || number < fault_->number) return 0;
    if (number > fault_->number && !fault_->lasts) return 0;
    ++failures_;
    return fault_->error;
}

void FileCalls::arm(std::optional<CallFault> fault) {
    const std::lock_guard guard(lock_);
    armed_ = true;
    fault_ = fault;
    counts_ = {};
    failures_ = 0;
}

bool FileCalls::isArmed() const {
    const std::lock_guard guard(lock_);
    return armed_;
}

void FileCalls::disarm() {
    const std::lock_guard guard(lock_);
    armed_ = false;
}

int FileCalls::count(CallKind kind) const {
    const std::lock_guard guard(lock_);
    return counts_[static_cast<std::size_t>(kind)];
}

int FileCalls::failures() const {
    const std::lock_guard guard(lock_);
    return failures_;
}

} // namespace lumnara::testing
