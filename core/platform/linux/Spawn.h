#pragma once

#include "core/platform/linux/OwnedFd.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// A child process as it is to be started: with nothing to read, default signals and no descriptor of ours.
struct SpawnRequest {
    enum class Own { group, session };

    std::vector<std::string> command; ///< an absolute path and its arguments
    Own own = Own::group;             ///< leads a process group, or a session, of its own
    // Where output goes; negative for nowhere.
    int output = -1;
    int error = -1;
    std::filesystem::path folder{}; ///< where it runs; empty for where we do
};

struct SpawnedChild {
    std::int32_t pid = 0;
    OwnedFd pidfd; ///< readable once the child has ended
};

/// How a child ended.
struct ChildExit {
    int code = 0; ///< the exit status, or the number of the signal
    bool bySignal = false;

    bool operator==(const ChildExit&) const = default;
};

/// A descriptor that is readable once the process has ended; closed, with errno set, for one that isn't
/// there.
OwnedFd openProcess(std::int32_t pid);

/// Starts a child. Throws std::system_error with the system's reason, also for a program that isn't there.
SpawnedChild spawnChild(const SpawnRequest& request);

/// How the child ended; nothing while it runs. With `reap` the process id is given back to the system.
std::optional<ChildExit> exitOf(const SpawnedChild& child, bool reap);

} // namespace lumnara
