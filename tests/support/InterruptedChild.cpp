#include "tests/support/InterruptedChild.h"

#include <csignal>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace lumnara::testing {

namespace {

pid_t forked() {
    const pid_t child = ::fork();
    if (child < 0) throw std::runtime_error("fork failed");
    return child;
}

int waitFor(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, 0) != child) throw std::runtime_error("waitpid failed");
    return status;
}

} // namespace

bool endsBeforeSystemCall(int number, const std::function<void()>& work) {
    const pid_t child = forked();
    if (child == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        work();
        ::_exit(0);
    }
    int status = waitFor(child);
    if (!WIFSTOPPED(status)) throw std::runtime_error("the child can't be traced");
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    // Each call stops the child twice, at its beginning and at its end; the first end is that of raise().
    for (int stops = 2 * number + 1;;) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        status = waitFor(child);
        if (!WIFSTOPPED(status)) {
            if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw std::runtime_error("the child failed");
            return true;
        }
        if (WSTOPSIG(status) == (SIGTRAP | 0x80) && stops-- == 0) break;
    }
    ::kill(child, SIGKILL);
    waitFor(child);
    return false;
}

void failSystemCall(long systemCall, int error) {
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(systemCall), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {std::size(filter), filter};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        throw std::runtime_error("the system call can't be made to fail");
}

} // namespace lumnara::testing
