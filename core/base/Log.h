#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace lumnara {

/// Writes one diagnostic line, which begins with the system's name ("Lumnara drag: ..."). Any thread.
void log(std::string_view line);

/// Where log lines go; standard error at first. Set at start-up, or by a test that reads them; an empty
/// function restores standard error. Returns the previous sink.
using LogSink = std::function<void(std::string_view line)>;
LogSink setLogSink(LogSink sink);

} // namespace lumnara
