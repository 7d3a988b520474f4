#include "core/base/Log.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace lumnara {

namespace {

struct LogState {
    std::mutex mutex;
    LogSink sink;
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

} // namespace

void log(std::string_view line) {
    LogState& state = logState();
    LogSink sink;
    {
        std::lock_guard guard(state.mutex);
        sink = state.sink;
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

} // namespace lumnara
