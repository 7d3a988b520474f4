#include "core/platform/linux/DetachedPrograms.h"

#include "core/async/Task.h"
#include "core/async/Trigger.h"
#include "core/platform/linux/Spawn.h"

#include <algorithm>
#include <utility>

namespace lumnara {

struct DetachedPrograms::Program {
    SpawnedChild process;
    std::unique_ptr<async::FdWatch> watch;
    std::optional<int> status;
    async::Trigger ended;
};

DetachedPrograms::~DetachedPrograms() {
    for (const auto& program : programs_) program->watch.reset(); // a task may hold it for longer
}

std::int32_t DetachedPrograms::start(const std::vector<std::string>& command,
                                     const std::filesystem::path& folder) {
    const auto program = std::make_shared<Program>();
    program->process = spawnChild({.command = command, .own = SpawnRequest::Own::session, .folder = folder});
    program->watch = loop_.watchReadable(program->process.pidfd.get(),
                                         [this, program = program.get()] { noteExit(*program); });
    programs_.push_back(program);
    return program->process.pid;
}

void DetachedPrograms::noteExit(Program& program) {
    const auto exit = exitOf(program.process, true);
    if (!exit) return;
    program.status = exit->bySignal ? 128 + exit->code : exit->code;
    program.watch.reset();
    program.ended.fire();
    programs_.remove_if([&](const auto& each) { return each.get() == &program; });
}

async::Task<std::optional<int>> DetachedPrograms::exitStatus(std::int32_t pid, double seconds) {
    const auto found = std::find_if(programs_.begin(), programs_.end(),
                                    [&](const auto& each) { return each->process.pid == pid; });
    if (found == programs_.end()) co_return std::nullopt;
    const std::shared_ptr<Program> program = *found;
    co_await program->ended.wait(seconds);
    co_return program->status;
}

} // namespace lumnara
