#pragma once

#include "core/async/Driver.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace lumnara::async {

/// Watched file descriptors over poll(2): what the drivers without a toolkit share. Main thread.
class PollSet {
public:
    std::unique_ptr<FdWatch> watch(int fd, std::function<void()> onReadable);

    /// Waits until a descriptor is readable or `timeout` has passed (forever without one), and calls back
    /// once for each that is. Returns whether any was. Throws std::logic_error for a watched descriptor
    /// that was closed.
    bool poll(std::optional<Nanos> timeout);

private:
    struct Entry {
        int fd;
        std::function<void()> onReadable;
        bool watched = true;
    };
    class Watch;

    std::vector<std::shared_ptr<Entry>> entries_;
};

} // namespace lumnara::async
