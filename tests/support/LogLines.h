#pragma once

#include "core/base/Log.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace lumnara::testing {

/// Takes the log lines of all threads for as long as it lives.
class LogLines {
public:
    LogLines()
        : previous_(setLogSink([this](std::string_view line) {
              std::lock_guard guard(lock_);
              lines_.emplace_back(line);
          })) {}
    ~LogLines() { setLogSink(std::move(previous_)); }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    /// What came since the last call.
    std::vector<std::string> take() {
        std::lock_guard guard(lock_);
        return std::exchange(lines_, {});
    }

private:
    std::mutex lock_;
    std::vector<std::string> lines_;
    LogSink previous_;
};

} // namespace lumnara::testing
