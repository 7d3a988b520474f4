#include "core/base/Log.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fmt/core.h>
#include <mutex>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

struct LogState {
    std::mutex mutex;
    LogSink sink;
    int file = -1;
    Date (*now)() = nullptr;
};

LogState& logState() {
    static LogState state;
    return state;
}

void writeToStandardError(std::string_view line) {
    std::string whole(line);
    whole += '\n';
    std::fwrite(whole.data(), 1, whole.size(), stderr);
}

/// In one call, so that lines of several processes don't mix.
void writeToFile(int file, Date moment, std::string_view line) {
    std::string stamp = moment.iso8601();
    stamp.insert(stamp.size() - 1, fmt::format(".{:03}", moment.milliseconds % 1000));
    const std::string whole = fmt::format("{} {}\n", stamp, line);
    // A disk that is full must not stop the program for the sake of its log.
    [[maybe_unused]] const ssize_t written = ::write(file, whole.data(), whole.size());
}

} // namespace

void log(std::string_view line) {
    LogState& state = logState();
    LogSink sink;
    {
        std::lock_guard guard(state.mutex);
        sink = state.sink;
        if (state.file >= 0) writeToFile(state.file, state.now(), line);
    }
    // Outside the lock: a sink may itself log or set another sink.
    if (sink)
        sink(line);
    else
        writeToStandardError(line);
}

LogSink setLogSink(LogSink sink) {
    LogState& state = logState();
    std::lock_guard guard(state.mutex);
    return std::exchange(state.sink, std::move(sink));
}

void alsoLogTo(const std::filesystem::path& file, Date (*now)()) {
    int opened = -1;
    if (!file.empty()) {
        opened = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        if (opened < 0) throw std::system_error(errno, std::generic_category(), file.string());
    }
    LogState& state = logState();
    std::lock_guard guard(state.mutex);
    if (state.file >= 0) ::close(state.file);
    state.file = opened;
    state.now = now;
}

} // namespace lumnara
