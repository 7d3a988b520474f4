#pragma once

#include "core/base/Date.h"

#include <filesystem>
#include <functional>
#include <string_view>

namespace lumnara {

/// Writes one diagnostic line, which begins with the system's name ("Lumnara drag: ..."). Any thread.
void log(std::string_view line);

/// Where log lines go; standard error at first. Set at start-up, or by a test that reads them; an empty
/// function restores standard error. Returns the previous sink.
using LogSink = std::function<void(std::string_view line)>;
LogSink setLogSink(LogSink sink);

/// From now on each line also goes, behind its moment, to the end of `file`, whatever the sink; an empty path
/// ends that. `now` is asked on the threads that log. Throws std::system_error when the file can't be opened.
void alsoLogTo(const std::filesystem::path& file, Date (*now)());

} // namespace lumnara
