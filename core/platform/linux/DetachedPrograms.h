#pragma once

#include "core/async/Loop.h"
#include "core/async/TaskFwd.h"

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Starts programs that live on their own: in a session of their own, without a terminal, outliving this
/// program. Main thread; the loop outlives it.
class DetachedPrograms {
public:
    explicit DetachedPrograms(async::Loop& loop) : loop_(loop) {}
    DetachedPrograms(const DetachedPrograms&) = delete;
    DetachedPrograms& operator=(const DetachedPrograms&) = delete;
    ~DetachedPrograms();

    /// Starts `command`, an absolute path and its arguments, in `folder` if there is one. Returns the process
    /// id. Throws std::system_error.
    std::int32_t start(const std::vector<std::string>& command, const std::filesystem::path& folder = {});

    /// Waits until the program has ended, for as long as `seconds`. Its exit status, 128 and the number for
    /// a signal; nothing when it runs on.
    async::Task<std::optional<int>> exitStatus(std::int32_t pid, double seconds);

private:
    struct Program;

    void noteExit(Program& program);

    async::Loop& loop_;
    std::list<std::shared_ptr<Program>> programs_;
};

} // namespace lumnara
