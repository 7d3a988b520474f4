#include "core/platform/linux/Spawn.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>

extern "C" { // which the header of glibc 2.36 forgets
#include <sys/pidfd.h>
}

namespace lumnara {

namespace {

void checkSpawn(int error, const std::string& program) {
    if (error != 0) throw std::system_error(error, std::generic_category(), program);
}

class SpawnActions {
public:
    explicit SpawnActions(const SpawnRequest& request) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        addOutput(request.output, STDOUT_FILENO);
        addOutput(request.error, STDERR_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        if (!request.folder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, request.folder.c_str());
    }
    SpawnActions(const SpawnActions&) = delete;
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    void addOutput(int fd, int place) {
        if (fd < 0)
            posix_spawn_file_actions_addopen(&actions_, place, "/dev/null", O_WRONLY, 0);
        else
            posix_spawn_file_actions_adddup2(&actions_, fd, place);
    }

    posix_spawn_file_actions_t actions_;
};

class SpawnAttributes {
public:
    explicit SpawnAttributes(SpawnRequest::Own own) {
        posix_spawnattr_init(&attributes_);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        posix_spawnattr_setpgroup(&attributes_, 0);
        const int place = own == SpawnRequest::Own::group ? POSIX_SPAWN_SETPGROUP : POSIX_SPAWN_SETSID;
        posix_spawnattr_setflags(&attributes_,
                                 static_cast<short>(place | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }

    const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

} // namespace

OwnedFd openProcess(std::int32_t pid) { return OwnedFd(::pidfd_open(pid, 0)); }

SpawnedChild spawnChild(const SpawnRequest& request) {
    const SpawnActions actions(request);
    const SpawnAttributes attributes(request.own);
    std::vector<char*> arguments;
    for (const std::string& argument : request.command)
        arguments.push_back(
            const_cast<char*>(argument.c_str())); // which the interface wants and leaves alone
    arguments.push_back(nullptr);

    const std::string& program = request.command.front();
    pid_t pid = 0;
    checkSpawn(
        ::posix_spawn(&pid, program.c_str(), actions.get(), attributes.get(), arguments.data(), environ),
        program);
    SpawnedChild child{pid, openProcess(pid)};
    if (!child.pidfd.isOpen()) { // a child whose end nobody would see
        const int error = errno;
        ::kill(-pid, SIGKILL);
        ::waitpid(pid, nullptr, 0);
        checkSpawn(error, program);
    }
    return child;
}

std::optional<ChildExit> exitOf(const SpawnedChild& child, bool reap) {
    siginfo_t info{};
    const int options = WEXITED | WNOHANG | (reap ? 0 : WNOWAIT);
    if (::waitid(P_PIDFD, static_cast<id_t>(child.pidfd.get()), &info, options) != 0 || info.si_pid == 0)
        return std::nullopt;
    return ChildExit{info.si_status, info.si_code != CLD_EXITED};
}

} // namespace lumnara
